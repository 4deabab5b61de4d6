# The test doubles of the compiler component, built as a real one would be: a
# shared library with the component's file name, each in a directory of its
# own in the build tree, never beside the program; the program, the tests and
# the benchmarks find one only where they put it.
function(kvcomp_test_library TARGET DIRECTORY)
  add_library(${TARGET} MODULE ${ARGN})
  target_include_directories(${TARGET} PRIVATE ${PROJECT_SOURCE_DIR}/src)
  set_target_properties(${TARGET} PROPERTIES
    OUTPUT_NAME KvComp141 PREFIX "lib" AUTOMOC OFF
    C_VISIBILITY_PRESET hidden CXX_VISIBILITY_PRESET hidden
    LIBRARY_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/${DIRECTORY})
endfunction()
