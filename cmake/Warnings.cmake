# Applied per target so third-party headers keep their own warning level.
function(skyvane_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
    -Wold-style-cast -Wcast-align -Woverloaded-virtual -Wimplicit-fallthrough)
  if(SKYVANE_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
