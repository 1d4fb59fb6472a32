# Settings that every target of this project has and none of its consumers gets.
function(qe_configure_target target)
  target_compile_features(${target} PRIVATE cxx_std_20)
  set_target_properties(${target} PROPERTIES
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    -Woverloaded-virtual -Wold-style-cast -Wcast-qual -Wformat=2
    $<$<BOOL:${QEREFINER_WARNINGS_AS_ERRORS}>:-Werror>)
  if(QEREFINER_SANITIZERS)
    # Types that one library declares and the other defines have no common type information, which
    # the check of the dynamic type would need.
    target_compile_options(${target} PRIVATE
      -fsanitize=${QEREFINER_SANITIZERS} -fno-sanitize=vptr -fno-sanitize-recover=all
      -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${QEREFINER_SANITIZERS} -fno-sanitize=vptr)
  endif()
  if(QEREFINER_COVERAGE)
    # Counters of functions that only one unit knows are told apart by the name of its file, which
    # is the same for many where several units are compiled as one.
    target_compile_options(${target} PRIVATE
      -fprofile-instr-generate -fcoverage-mapping
      "SHELL:-Xclang -main-file-name -Xclang ${target}")
    target_link_options(${target} PRIVATE -fprofile-instr-generate)
  endif()
endfunction()

# A shared library `name` whose units are compiled once, in the object library `name`_objects.
# Tests link the objects to reach what the library hides.
function(qe_add_library name)
  add_library(${name}_objects OBJECT)
  qe_configure_target(${name}_objects)
  set_target_properties(${name}_objects PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    LINKER_LANGUAGE CXX)

  add_library(${name} SHARED)
  add_library(qerefiner::${name} ALIAS ${name})
  qe_configure_target(${name})
  set_target_properties(${name} PROPERTIES
    LINKER_LANGUAGE CXX
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    # An installed library finds its sibling wherever the tree lies.
    INSTALL_RPATH "$ORIGIN")
  target_link_libraries(${name} PRIVATE ${name}_objects)
  # A platform from elsewhere may live in the program that loads the refiner, and sanitizers leave
  # their own functions to the program.
  if(QEREFINER_PLATFORM_TARGET STREQUAL "qeengine" AND NOT QEREFINER_SANITIZERS)
    target_link_options(${name} PRIVATE LINKER:--no-undefined)
  endif()
endfunction()
