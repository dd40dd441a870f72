# What the service is built from. Found from the top folder, so that the tests, which lie beside the service and link its
# static libraries, see the imported targets too.

find_package(Boost 1.81 REQUIRED)
find_package(CLI11 REQUIRED)
find_package(CURL 7.87 REQUIRED) # CURLOPT_QUICK_EXIT
find_package(date REQUIRED)
find_package(OpenSSL REQUIRED COMPONENTS Crypto)
find_package(simdjson 3.0 REQUIRED)
find_package(PostgreSQL 15 REQUIRED)
find_package(SQLite3 REQUIRED)
find_package(SQLiteCpp REQUIRED)
find_package(Threads REQUIRED)
find_package(ZLIB REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(PCRE2 REQUIRED IMPORTED_TARGET libpcre2-8)
