# Warnings as errors on our own code only; third-party headers come in as SYSTEM.
function(tarnwick_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Werror -Wshadow -Wnon-virtual-dtor)
endfunction()

# A library of one src/ folder: explicit file list, the src/ root on the include path.
function(tarnwick_library name)
  add_library(${name} STATIC ${ARGN})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  tarnwick_warnings(${name})
endfunction()
