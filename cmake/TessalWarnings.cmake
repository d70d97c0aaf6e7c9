# SPDX-License-Identifier: MIT
# Warning and sanitizer settings, applied per target (never globally).

# Sanitizer findings stop the program (no recovery), so that a test or fuzz run fails on
# the first one instead of printing it and carrying on.
function(tessal_set_sanitizers target)
  if(TESSAL_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${TESSAL_SANITIZE}
                           -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${TESSAL_SANITIZE})
  endif()
endfunction()

function(tessal_set_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
  tessal_set_sanitizers(${target})
endfunction()
