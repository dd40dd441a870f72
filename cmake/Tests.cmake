# How tests are built and made known to ctest.
find_package(GTest REQUIRED)
find_package(Qt5 5.15 REQUIRED COMPONENTS Core Network)
include(GoogleTest)

# rk_add_test(<name> SOURCES <file> ... LIBRARIES <target> ... [QT] [POSTGRES] [STORES])
#   One executable of GoogleTest cases. QT: runs under a QCoreApplication (support/QtTestMain.cpp). POSTGRES: needs a
#   PostgreSQL server (support/PostgresServer.h). STORES: runs once with each kind of store (support/TestStore.h).
function(rk_add_test name)
  cmake_parse_arguments(arg "QT;POSTGRES;STORES" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  rk_target_defaults(${name})
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} GTest::gmock)
  if(arg_QT)
    target_link_libraries(${name} PRIVATE rk_qt_test_main)
  else()
    target_link_libraries(${name} PRIVATE GTest::gtest_main)
  endif()
  set(labels "")
  if(name IN_LIST RK_TESTS_OF_THREADS)
    set(labels LABELS threads)
  endif()
  # For what hangs. Under sanitizers everything takes several times as long.
  set(timeout 120)
  if(CMAKE_CXX_FLAGS MATCHES "-fsanitize")
    set(timeout 600)
  endif()
  set(with_server FIXTURES_REQUIRED PostgresServer ENVIRONMENT "RK_POSTGRES_SERVER=${RK_POSTGRES_SERVER}")
  set(postgres "")
  if(arg_POSTGRES)
    target_link_libraries(${name} PRIVATE rk_postgres_server)
    set(postgres ${with_server})
  endif()
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT ${timeout} ${labels} ${postgres})
  if(arg_STORES)
    target_link_libraries(${name} PRIVATE rk_test_store)
    # Under sanitizers the contract of the stores has to do for what is the store's own.
    if(TARGET rk_postgres_server AND NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
      # A second variable beside the first: the list of several does not come through to the tests.
      gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST TEST_PREFIX Postgres:
        PROPERTIES TIMEOUT ${timeout} ${labels} ${with_server} ENVIRONMENT_MODIFICATION RK_TEST_STORE=set:postgres)
    endif()
  endif()
endfunction()
