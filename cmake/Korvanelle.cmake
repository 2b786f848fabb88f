# Shared build rules: warnings, sanitizers, one library for each source folder, one test program
# for each test folder.

add_library(korvanelle_options INTERFACE)
target_compile_options(korvanelle_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
target_compile_definitions(korvanelle_options INTERFACE
    QT_NO_KEYWORDS QT_NO_CAST_TO_ASCII
    KORVANELLE_VERSION_MAJOR=${PROJECT_VERSION_MAJOR}
    KORVANELLE_VERSION_MINOR=${PROJECT_VERSION_MINOR}
    KORVANELLE_VERSION_REVISION=${PROJECT_VERSION_PATCH})
if(KORVANELLE_SANITIZE)
    target_compile_options(korvanelle_options INTERFACE
        -fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(korvanelle_options INTERFACE -fsanitize=address,undefined)
endif()

# korvanelle_unity(<target> <sources>): most of a build is reading headers, so a few sources share one
# reading. Names that a source keeps to itself must differ within its folder.
function(korvanelle_unity target batch)
    set_target_properties(${target} PROPERTIES
        UNITY_BUILD ${KORVANELLE_UNITY} UNITY_BUILD_BATCH_SIZE ${batch})
    if(KORVANELLE_UNITY)
        target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
    endif()
endfunction()

# korvanelle_folder(<name> <libraries>...): the library of src/<name>, made of all sources
# in it and in the folders below.
function(korvanelle_folder name)
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS *.cpp *.h *.ui *.qrc)
    add_library(${name} STATIC ${sources})
    target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
    target_link_libraries(${name} PUBLIC korvanelle_options ${ARGN})
    set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
endfunction()

# korvanelle_tests(<folder> <libraries>...): the program test_<folder> of tests/<folder>. Those with
# the highest KORVANELLE_TEST_COST are begun first.
function(korvanelle_tests folder)
    file(GLOB sources CONFIGURE_DEPENDS ${folder}/*.cpp ${folder}/*.h)
    if(NOT sources)
        return()
    endif()
    add_executable(test_${folder} ${sources})
    target_include_directories(test_${folder} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
    target_compile_definitions(test_${folder} PRIVATE
        KORVANELLE_SOURCE_DIR="${CMAKE_SOURCE_DIR}"
        KORVANELLE_BUILD_DIR="${CMAKE_BINARY_DIR}")
    target_link_libraries(test_${folder} PRIVATE korvanelle_options ${ARGN} GTest::gmock)
    # Tests run once; what they test is optimized, they are not.
    target_compile_options(test_${folder} PRIVATE $<$<CONFIG:Release>:-O0>)
    korvanelle_precompiled(tests test_${folder})
    korvanelle_unity(test_${folder} 8)
    set_target_properties(test_${folder} PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
    gtest_discover_tests(test_${folder} DISCOVERY_MODE PRE_TEST
        DISCOVERY_TIMEOUT 60
        PROPERTIES TIMEOUT 300 COST ${KORVANELLE_TEST_COST}
            ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;UBSAN_OPTIONS=print_stacktrace=1;LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/lsan.supp")
endfunction()
include(GoogleTest)
