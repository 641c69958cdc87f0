# What makes an error in release builds end the process rather than be used: checked buffers and
# stacks, programs at random addresses, tables of addresses that are read-only once the program is
# loaded. Sanitizers and counters find more themselves, and checked buffers need an optimised build:
# so not there, and not in debug builds. scripts/check_hardening.sh looks at what has been built.
include(CheckPIESupported)

# lumivane_harden(TARGET): for an interface library that all targets of ours use.
function(lumivane_harden target)
  if(LUMIVANE_SANITIZE OR LUMIVANE_SANITIZE_THREADS OR LUMIVANE_COVERAGE OR LUMIVANE_BUILD_FUZZ
     OR NOT CMAKE_SYSTEM_NAME STREQUAL "Linux")
    return()
  endif()
  set(release "$<NOT:$<CONFIG:Debug>>")
  target_compile_options(${target} INTERFACE
    "$<${release}:-fstack-protector-strong;-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  target_link_options(${target} INTERFACE "$<${release}:LINKER:-z,relro,-z,now>")
endfunction()

# Programs at random addresses: CMAKE_POSITION_INDEPENDENT_CODE compiles for it, and with this the
# linker gets it as well.
check_pie_supported(LANGUAGES CXX)
