# brindlet_unity(TARGET): its sources are compiled several at a time, since reading the headers is what takes long. Names in
# the unnamed namespaces of a layer are different for that, and each test has a namespace of its own.
function(brindlet_unity target)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 20)
endfunction()

# brindlet_layer(FOLDER LINKS TARGET...): the folder src/FOLDER as one library.
#
# Its headers are found as "FOLDER/header.h", and only by targets that link it: the include path of a layer
# holds that one folder and nothing beside it, so that a wrong include fails to build.
function(brindlet_layer folder)
  cmake_parse_arguments(ARG "" "" "LINKS" ${ARGN})
  string(REPLACE "/" "_" name ${folder})
  set(source ${CMAKE_SOURCE_DIR}/src/${folder})
  file(GLOB sources CONFIGURE_DEPENDS ${source}/*.cpp ${source}/linux/*.cpp ${source}/wire/*.cpp ${source}/terminal/*.cpp)
  add_library(brindlet_${name} STATIC ${sources})
  brindlet_unity(brindlet_${name})

  set(includes ${CMAKE_BINARY_DIR}/include/${name})
  get_filename_component(parent ${includes}/${folder} DIRECTORY)
  file(MAKE_DIRECTORY ${parent})
  file(CREATE_LINK ${source} ${includes}/${folder} SYMBOLIC)
  target_include_directories(brindlet_${name} PUBLIC ${includes})
  target_link_libraries(brindlet_${name} PUBLIC ${ARG_LINKS})
endfunction()

# brindlet_tests(FOLDER [SERIAL] LINKS TARGET...): tests/FOLDER as one test program, its cases found by CTest. SERIAL: no
# other test runs beside them, as other programs are part of them that take their time.
function(brindlet_tests folder)
  cmake_parse_arguments(ARG "SERIAL" "" "LINKS" ${ARGN})
  string(REPLACE "/" "_" name ${folder})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/${folder}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(${name}_tests ${sources})
  brindlet_unity(${name}_tests)
  # What is tested is as released; optimizing the tests themselves would take longer than running them.
  target_compile_options(${name}_tests PRIVATE $<$<CONFIG:Release>:-O0>)
  target_include_directories(${name}_tests PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name}_tests PRIVATE ${ARG_LINKS} GTest::gtest GTest::gtest_main)
  gtest_discover_tests(${name}_tests DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 120 RUN_SERIAL ${ARG_SERIAL})
endfunction()
