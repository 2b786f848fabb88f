# SQLCipher as a static library. Shared, its sqlite3_* symbols would stand in for the SQLite of
# other libraries of the process, so the archive is linked with its symbols kept out of the
# dynamic table.
find_library(SQLCIPHER_ARCHIVE libsqlcipher.a REQUIRED)
find_path(SQLCIPHER_INCLUDE sqlcipher/sqlite3.h REQUIRED)
find_package(OpenSSL REQUIRED COMPONENTS Crypto)

add_library(sqlcipher INTERFACE)
target_include_directories(sqlcipher SYSTEM INTERFACE ${SQLCIPHER_INCLUDE}/sqlcipher)
target_compile_definitions(sqlcipher INTERFACE SQLITE_HAS_CODEC)
target_link_libraries(sqlcipher INTERFACE ${SQLCIPHER_ARCHIVE} OpenSSL::Crypto ${CMAKE_DL_LIBS} m)
target_link_options(sqlcipher INTERFACE "LINKER:--exclude-libs,libsqlcipher.a")
