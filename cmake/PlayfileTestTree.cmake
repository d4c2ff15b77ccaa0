# Tests of the tree itself: its media, examples, installed form, and the checks of its sources.

add_test(NAME test_media
    COMMAND "${CMAKE_SOURCE_DIR}/scripts/make-test-media.sh" "${PLAYFILE_TEST_MEDIA_DIR}")
set_tests_properties(test_media PROPERTIES
    FIXTURES_SETUP test_media LABELS media TIMEOUT ${PLAYFILE_LONG_TIMEOUT} PROCESSORS 2)

# What follows says the same of every build; it is asked of the unsanitized ones.
if(PLAYFILE_SANITIZE)
    return()
endif()

if(CMAKE_BUILD_TYPE STREQUAL "Release")
    foreach(check words layers format headers)
        add_test(NAME check/${check} COMMAND "${CMAKE_SOURCE_DIR}/scripts/check-${check}.py")
        set_tests_properties(check/${check} PROPERTIES LABELS check TIMEOUT ${PLAYFILE_LONG_TIMEOUT})
    endforeach()
    set_tests_properties(check/headers PROPERTIES PROCESSORS 2)

    add_test(NAME check/symbols
        COMMAND "${CMAKE_SOURCE_DIR}/scripts/check-symbols.py" "${CMAKE_BINARY_DIR}")
    set_tests_properties(check/symbols PROPERTIES LABELS check TIMEOUT ${PLAYFILE_UNIT_TIMEOUT})
endif()

foreach(consumer package pkg-config plugin)
    add_test(NAME install/${consumer}
        COMMAND "${CMAKE_SOURCE_DIR}/tests/install/try-${consumer}.sh" "${PLAYFILE_TEST_DIR}/installed"
            "${PROJECT_VERSION}" "${PLAYFILE_TEST_MEDIA_DIR}"
        WORKING_DIRECTORY "${PLAYFILE_TEST_DIR}")
    set_tests_properties(install/${consumer} PROPERTIES
        LABELS install TIMEOUT ${PLAYFILE_LONG_TIMEOUT} FIXTURES_REQUIRED "installed_tree;test_media")
endforeach()
add_test(NAME install/stage
    COMMAND "${CMAKE_SOURCE_DIR}/tests/install/stage.sh" "${CMAKE_BINARY_DIR}" "${PLAYFILE_TEST_DIR}/installed")
set_tests_properties(install/stage PROPERTIES
    LABELS install TIMEOUT ${PLAYFILE_UNIT_TIMEOUT} FIXTURES_SETUP installed_tree)
