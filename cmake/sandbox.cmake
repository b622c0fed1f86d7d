# Every program this build runs on the host goes through wine-run, which
# keeps it inside a throwaway Wine prefix below the build folder.
configure_file(${CMAKE_SOURCE_DIR}/scripts/wine-run.in ${CMAKE_BINARY_DIR}/wine-run
               FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                                WORLD_READ WORLD_EXECUTE
               @ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_BINARY_DIR}/wine-run)
