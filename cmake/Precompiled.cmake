# Headers that many sources read are compiled once for each kind of target, since reading Qt's takes
# most of the time of a build. A kind's targets have its definitions and more, never fewer.
option(KORVANELLE_PRECOMPILED "Compile common headers once" ON)

function(korvanelle_precompiled_kind kind)
    set(source ${CMAKE_BINARY_DIR}/precompiled/${kind}.cpp)
    file(CONFIGURE OUTPUT ${source} CONTENT "")
    add_library(precompiled_${kind} OBJECT ${source})
    set_target_properties(precompiled_${kind} PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
    target_link_libraries(precompiled_${kind} PRIVATE korvanelle_options ${ARGN})
    target_precompile_headers(precompiled_${kind} PRIVATE
        ${PROJECT_SOURCE_DIR}/cmake/precompiled/${kind}.h)
endfunction()

# korvanelle_precompiled(<kind> <targets>...): the targets take the headers of that kind.
function(korvanelle_precompiled kind)
    if(NOT KORVANELLE_PRECOMPILED)
        return()
    endif()
    foreach(target IN LISTS ARGN)
        target_precompile_headers(${target} REUSE_FROM precompiled_${kind})
    endforeach()
endfunction()

if(KORVANELLE_PRECOMPILED)
    korvanelle_precompiled_kind(engine Qt6::Core)
    korvanelle_precompiled_kind(screens Qt6::Widgets)
    korvanelle_precompiled_kind(tests Qt6::Widgets GTest::gmock)
    # Tests run once; what they test is optimized, they are not.
    target_compile_options(precompiled_tests PRIVATE $<$<CONFIG:Release>:-O0>)
endif()
