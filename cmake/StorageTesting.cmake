# The clean-up tests need host symbolic links inside the Wine prefix's drive
# folder (which Wine shows as directories and files, and which no Windows
# call can make there). A fixture test makes them before the storage tests
# run; the tests fill in the trees around them.
add_test(NAME storage.unix_links
         COMMAND ${CMAKE_SOURCE_DIR}/cmake/storage-unix-links.sh ${CMAKE_CROSSCOMPILING_EMULATOR})
set_tests_properties(storage.unix_links PROPERTIES LABELS wine RESOURCE_LOCK wine_prefix
                     FIXTURES_SETUP storage_unix_links)
set(MVSUP_TEST_FIXTURES_storage storage_unix_links)
