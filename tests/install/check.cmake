# Installs the build into a fresh folder, builds the stranger's project against it and runs both
# that project's program and the installed one, found through their own paths alone.

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output
    ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGN}\nended with ${result}:\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

set(sanitizer "")
if(SANITIZE)
  set(sanitizer "-fsanitize=address,undefined")
endif()

file(REMOVE_RECURSE "${WORK}")
run(${CMAKE_COMMAND} --install "${BUILD}" --prefix "${WORK}/prefix")
run(${CMAKE_COMMAND} -S "${PROJECT}" -B "${WORK}/build" -G Ninja
  "-DCMAKE_PREFIX_PATH=${WORK}/prefix" "-DCMAKE_C_COMPILER=${C}" "-DCMAKE_CXX_COMPILER=${CXX}"
  "-DCMAKE_CXX_FLAGS=${sanitizer}" -DCMAKE_BUILD_TYPE=Release "-DWANTED=${VERSION}")
run(${CMAKE_COMMAND} --build "${WORK}/build")
run("${WORK}/build/stranger" "${SCENE}" "${WORK}/shot.json")
file(READ "${WORK}/shot.json" shot)
string(JSON count LENGTH "${shot}" Regions)
if(count LESS 3)
  message(FATAL_ERROR "the stranger's shot has ${count} regions")
endif()

run("${WORK}/prefix/bin/lumivane" --version)
if(NOT output MATCHES "^lumivane ${VERSION}\n")
  message(FATAL_ERROR "the installed program says: ${output}")
endif()
run("${WORK}/prefix/bin/lumivane-driver" "-if=${SCENE}")
