# Makes the packages, unpacks them as dpkg would, and uses them as a stranger would.

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output
    ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGN}\nended with ${result}:\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE "${WORK}")
run(cpack --config "${BUILD}/CPackConfig.cmake" -B "${WORK}/made")
file(GLOB packages "${WORK}/made/*.deb")
set(names "")
foreach(package ${packages})
  run(dpkg-deb --field "${package}" Package Version Depends)
  if(NOT output MATCHES "Version: ${VERSION}\n")
    message(FATAL_ERROR "${package} is of another version:\n${output}")
  endif()
  string(APPEND names "${output}")
  run(dpkg-deb --extract "${package}" "${WORK}/unpacked")
endforeach()
foreach(name "liblumivane[0-9.]+" liblumivane-dev lumivane lumivane-doc)
  if(NOT names MATCHES "Package: ${name}\n")
    message(FATAL_ERROR "there is no package ${name} among:\n${names}")
  endif()
endforeach()

# What the packages need beside each other is listed, as the machine that has them sees it.
if(NOT names MATCHES "libvtk9" OR NOT names MATCHES "libstdc")
  message(FATAL_ERROR "the packages do not say that they need VTK:\n${names}")
endif()

foreach(file docs/embedding.md docs/pictures/ring.png examples/FirstShot.cpp scenes/small.json
    CHANGELOG.md reference/index.html)
  if(NOT EXISTS "${WORK}/unpacked/usr/share/doc/lumivane-doc/${file}")
    message(FATAL_ERROR "lumivane-doc is without ${file}")
  endif()
endforeach()

run("${WORK}/unpacked/usr/bin/lumivane" --version)
if(NOT output MATCHES "^lumivane ${VERSION}\n")
  message(FATAL_ERROR "the packaged program says: ${output}")
endif()
foreach(page lumivane lumivane-shot)
  if(NOT EXISTS "${WORK}/unpacked/usr/share/man/man1/${page}.1")
    message(FATAL_ERROR "no manual page ${page}")
  endif()
endforeach()
if(NOT EXISTS "${WORK}/unpacked/usr/share/bash-completion/completions/lumivane")
  message(FATAL_ERROR "no completion")
endif()

run(${CMAKE_COMMAND} -S "${PROJECT}" -B "${WORK}/build" -G Ninja
  "-DCMAKE_PREFIX_PATH=${WORK}/unpacked/usr" "-DCMAKE_CXX_COMPILER=${CXX}"
  -DCMAKE_BUILD_TYPE=Release "-DWANTED=${VERSION}")
run(${CMAKE_COMMAND} --build "${WORK}/build")
run("${WORK}/build/host" "${SCENE}" "${WORK}/shot.json")
file(READ "${WORK}/shot.json" shot)
string(JSON count LENGTH "${shot}" Regions)
if(count LESS 3)
  message(FATAL_ERROR "the stranger's shot has ${count} regions")
endif()

# The Python package finds its libraries from where it lies.
if(PYTHON)
  if(NOT names MATCHES "Package: python3-lumivane\n" OR NOT names MATCHES "python3-numpy")
    message(FATAL_ERROR "no package python3-lumivane that needs numpy among:\n${names}")
  endif()
  set(ENV{PYTHONPATH} "${WORK}/unpacked/usr/lib/python3/dist-packages")
  run("${PYTHON}" -c "import sys, lumivane
scene = lumivane.Scene.read(sys.argv[1])
print(lumivane.__file__, lumivane.__version__, scene.look((0, 0, 5), (0, 0, 1)).sky_view_factor)"
    "${SCENE}")
  if(NOT output MATCHES "^${WORK}/unpacked.* ${VERSION} 1.0\n")
    message(FATAL_ERROR "the packaged Python package says: ${output}")
  endif()
  # What the first page shows.
  run("${PYTHON}" -c "import lumivane
scene = lumivane.Scene.read('${CMAKE_CURRENT_LIST_DIR}/../data/models/house.city.json')
view = scene.look((-10, 4, 1.7), forward=(0, 0, 1))
print(view.sky_view_factor, len(view.shares['id']), view.shares['view_factor'].sum())")
  if(NOT output MATCHES "^0\\.[0-9]+ [0-9]+ (1\\.0|0\\.99999)")
    message(FATAL_ERROR "the first page's lines say: ${output}")
  endif()
endif()
