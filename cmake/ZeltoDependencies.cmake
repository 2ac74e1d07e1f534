# The libraries that the project is built on; all are Debian packages (packaging/debian-packages).

find_package(Threads REQUIRED)
find_package(Boost 1.81 REQUIRED COMPONENTS json)
find_package(CURL 7.88 REQUIRED)
find_package(OpenSSL 3.0 REQUIRED COMPONENTS Crypto SSL)
find_package(ICU 70 REQUIRED COMPONENTS uc i18n data)
find_package(spdlog REQUIRED)
find_package(SQLite3 REQUIRED)
find_package(CLI11 REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(sodium REQUIRED IMPORTED_TARGET libsodium)
pkg_check_modules(secret REQUIRED IMPORTED_TARGET libsecret-1)
pkg_check_modules(gmime REQUIRED IMPORTED_TARGET gmime-3.0)
pkg_check_modules(gumbo REQUIRED IMPORTED_TARGET gumbo)

# They ask for macros that the compiler defines anyway, and that would keep precompiled headers from fitting.
set_target_properties(PkgConfig::gmime PkgConfig::secret PROPERTIES INTERFACE_COMPILE_OPTIONS "")
