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
  "-DCMAKE_PREFIX_PATH=${WORK}/prefix" "-DCMAKE_CXX_COMPILER=${CXX}"
  "-DCMAKE_CXX_FLAGS=${sanitizer}" -DCMAKE_BUILD_TYPE=Release "-DWANTED=${VERSION}")
run(${CMAKE_COMMAND} --build "${WORK}/build")
run("${WORK}/build/host" "${SCENE}" "${WORK}/shot.json")
file(READ "${WORK}/shot.json" shot)
string(JSON count LENGTH "${shot}" Regions)
if(count LESS 3)
  message(FATAL_ERROR "the stranger's shot has ${count} regions")
endif()

# The same without CMake.
set(ENV{PKG_CONFIG_PATH} "${WORK}/prefix/lib/pkgconfig:${WORK}/prefix/lib64/pkgconfig")
run(pkg-config --cflags --libs lumivane)
separate_arguments(flags UNIX_COMMAND "${output} ${sanitizer}")
run("${CXX}" "${PROJECT}/Main.cpp" -o "${WORK}/stranger" ${flags}
  "-Wl,-rpath,${WORK}/prefix/lib:${WORK}/prefix/lib64")
run("${WORK}/stranger" "${SCENE}" "${WORK}/shot2.json")
file(READ "${WORK}/shot2.json" shot2)
if(NOT shot STREQUAL shot2)
  message(FATAL_ERROR "the stranger built by pkg-config makes another shot")
endif()

# Components without CMake.
file(WRITE "${WORK}/components.cpp" "#include <lumivane/pictures/SvgWriter.h>
#include <lumivane/measure/VisibleShares.h>
#include <lumivane/session/LoadedScene.h>

#include <cstdio>

int main(int, char** argv) {
  const auto shot = Lumivane::Session::LoadedScene::fromFile(argv[1]).take({});
  const Lumivane::Measure::VisibleShares shares(shot.shot());
  std::printf(\"%zu\", shares.objects().size());
}
")
foreach(component visibility measure importers pictures)
  if(EXISTS "${BUILD}/lumivane-${component}.pc")
    run(pkg-config --modversion "lumivane-${component}")
    if(NOT output MATCHES "^${VERSION}\n")
      message(FATAL_ERROR "lumivane-${component}.pc is of another version: ${output}")
    endif()
  endif()
endforeach()
if(EXISTS "${BUILD}/lumivane-pictures.pc")
  run(pkg-config --cflags --libs lumivane-pictures)
  separate_arguments(flags UNIX_COMMAND "${output} ${sanitizer}")
  run("${CXX}" "${WORK}/components.cpp" -o "${WORK}/components" ${flags}
    "-Wl,-rpath,${WORK}/prefix/lib:${WORK}/prefix/lib64")
  run("${WORK}/components" "${SCENE}")
  if(NOT output MATCHES "3$")
    message(FATAL_ERROR "the stranger built by pkg-config with components measures: ${output}")
  endif()
endif()

# A component that is not there is named; a version of another minor is refused.
file(WRITE "${WORK}/other/CMakeLists.txt" "cmake_minimum_required(VERSION 3.23)
project(Other LANGUAGES CXX)
find_package(Lumivane 0.999)
find_package(Lumivane COMPONENTS nonsense)
if(Lumivane_FOUND)
  message(FATAL_ERROR found)
endif()
")
run(${CMAKE_COMMAND} -S "${WORK}/other" -B "${WORK}/other/build" -G Ninja
  "-DCMAKE_PREFIX_PATH=${WORK}/prefix" "-DCMAKE_CXX_COMPILER=${CXX}")
if(NOT output MATCHES "nonsense")
  message(FATAL_ERROR "the missing component is not named:\n${output}")
endif()

run("${WORK}/prefix/bin/lumivane" --version)
if(NOT output MATCHES "^lumivane ${VERSION}\n")
  message(FATAL_ERROR "the installed program says: ${output}")
endif()
run("${WORK}/prefix/bin/lumivane-driver" "-if=${SCENE}")
