# The flags of every target of ours, in one interface library that is never installed.
add_library(lumivane_compile INTERFACE)

# The same bits on every x86-64 machine: no fused multiply-add, no value-changing optimisation.
target_compile_options(lumivane_compile INTERFACE -ffp-contract=off -fno-fast-math)

target_compile_options(lumivane_compile INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  # The formats of printed text are literals; where one is not, it says why.
  -Wformat=2
  # The model has no virtual destructors: each owner deletes through the exact class.
  $<$<COMPILE_LANGUAGE:CXX>:-Wno-delete-non-virtual-dtor>
  $<$<AND:$<COMPILE_LANGUAGE:CXX>,$<CXX_COMPILER_ID:Clang>>:-Wno-delete-non-abstract-non-virtual-dtor>)
if(LUMIVANE_WERROR)
  target_compile_options(lumivane_compile INTERFACE -Werror)
endif()

# A library calls its own functions directly: none of them is meant to be replaced from outside.
target_compile_options(lumivane_compile INTERFACE
  $<$<CXX_COMPILER_ID:GNU>:-fno-semantic-interposition>)
target_link_options(lumivane_compile INTERFACE -Wl,-Bsymbolic-functions)

if(LUMIVANE_SANITIZE)
  target_compile_options(lumivane_compile INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer
    # The checks that the sanitizers add mislead g++ into seeing uninitialised temporaries.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(lumivane_compile INTERFACE -fsanitize=address,undefined)
endif()
if(LUMIVANE_SANITIZE_THREADS)
  target_compile_options(lumivane_compile INTERFACE -fsanitize=thread)
  target_link_options(lumivane_compile INTERFACE -fsanitize=thread)
endif()
if(LUMIVANE_BUILD_FUZZ)
  target_compile_options(lumivane_compile INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(LUMIVANE_COVERAGE)
  target_compile_options(lumivane_compile INTERFACE --coverage -O0)
  target_link_options(lumivane_compile INTERFACE --coverage)
endif()

include(cmake/LumivaneHarden.cmake)
lumivane_harden(lumivane_compile)
