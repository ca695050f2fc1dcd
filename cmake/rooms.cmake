# A room is one folder under src/ built as one shared library, so that the loadable modules and the program share
# one copy of every class. Its tests lie in the folder of the same name under tests/.

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)

function(tarnex_room name folder)
  cmake_parse_arguments(ARG "" "" "USES;LIBS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*.cpp)
  list(TRANSFORM ARG_USES PREPEND tarnex_)
  if(sources)
    add_library(tarnex_${name} SHARED ${sources})
    target_include_directories(tarnex_${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
    target_link_libraries(tarnex_${name} PUBLIC ${ARG_USES} ${ARG_LIBS} PRIVATE tarnex_options)
    set_target_properties(tarnex_${name} PROPERTIES INSTALL_RPATH $ORIGIN)  # a room finds the rooms it uses
    install(TARGETS tarnex_${name} LIBRARY DESTINATION lib/tarnex)
  else()
    add_library(tarnex_${name} INTERFACE)
    target_include_directories(tarnex_${name} INTERFACE ${CMAKE_SOURCE_DIR}/src)
    target_link_libraries(tarnex_${name} INTERFACE ${ARG_USES} ${ARG_LIBS})
  endif()
endfunction()

# A loadable module, built into the install folder under the file name by which the program asks for it.
function(tarnex_module name folder)
  cmake_parse_arguments(ARG "" "FILE" "USES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*.cpp)
  list(TRANSFORM ARG_USES PREPEND tarnex_)
  if(sources)
    cmake_path(GET ARG_FILE STEM LAST_ONLY stem)
    cmake_path(GET ARG_FILE EXTENSION LAST_ONLY extension)
    add_library(${name} MODULE ${sources})
    set_target_properties(${name} PROPERTIES PREFIX "" OUTPUT_NAME ${stem} SUFFIX ${extension}
                          LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/install
                          INSTALL_RPATH $ORIGIN/../../lib/tarnex CXX_VISIBILITY_PRESET hidden)
    # A module with a unique symbol would stay loaded for good, and its file couldn't be replaced at run time.
    target_compile_options(${name} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
    target_link_libraries(${name} PRIVATE ${ARG_USES} tarnex_options)
    install(TARGETS ${name} LIBRARY DESTINATION share/tarnex)
  endif()
endfunction()
