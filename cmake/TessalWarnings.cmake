# SPDX-License-Identifier: MIT
# Warning and sanitizer settings, applied per target (never globally).
function(tessal_set_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
  if(TESSAL_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${TESSAL_SANITIZE} -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${TESSAL_SANITIZE})
  endif()
endfunction()
