# Libraries from the system's packages; the README has a line of reason for each.

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(JPEG REQUIRED)
find_package(PNG REQUIRED)
find_package(CURL REQUIRED)
find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)
pkg_check_modules(GMPXX REQUIRED IMPORTED_TARGET gmpxx)
pkg_check_modules(NETTLE REQUIRED IMPORTED_TARGET nettle)

if(CORVANE_TESTS)
  find_package(GTest REQUIRED)
  include(GoogleTest)
endif()
if(CORVANE_BENCHMARKS)
  find_package(benchmark REQUIRED)
endif()
