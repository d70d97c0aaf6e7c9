# SPDX-License-Identifier: MIT
# Installs the build into a scratch prefix, then configures, builds and runs the consumer
# against it. Arguments: BUILD_DIR, SOURCE_DIR, WORK_DIR.
file(REMOVE_RECURSE "${WORK_DIR}")
execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --component tessal --prefix "${WORK_DIR}/prefix"
                RESULT_VARIABLE rc OUTPUT_QUIET)
if(rc)
  message(FATAL_ERROR "install failed: ${rc}")
endif()
execute_process(COMMAND "${CMAKE_COMMAND}" -S "${SOURCE_DIR}" -B "${WORK_DIR}/build"
                        "-DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix" -DCMAKE_BUILD_TYPE=Release
                RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(rc)
  message(FATAL_ERROR "configuring the consumer failed:\n${out}")
endif()
execute_process(COMMAND "${CMAKE_COMMAND}" --build "${WORK_DIR}/build"
                RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(rc)
  message(FATAL_ERROR "building the consumer failed:\n${out}")
endif()
execute_process(COMMAND "${WORK_DIR}/build/tessal-consumer"
                RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
message("${out}")
if(rc)
  message(FATAL_ERROR "the consumer failed: ${rc}")
endif()
