# Settings and commands for all units.
#
# Two flavours are built from one tree. The product flavour (WIN32) is cross-built and runs under Wine.
# The native flavour holds only what needs no Windows and runs under sanitizers (TARNHD_SANITIZE).

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE RelWithDebInfo)
endif()
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O2 -g1")

add_compile_options(-Wall -Wextra -Wshadow -Wnon-virtual-dtor -Werror
    -ffile-prefix-map=${CMAKE_SOURCE_DIR}/=
    # A compiler cache hands the sources over by their way from build/<flavour>.
    -ffile-prefix-map=../../=)
if(WIN32)
    enable_language(RC)
    # NDEBUG: a library's assertion would end the host. The native flavour keeps them.
    add_compile_definitions(UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX NDEBUG _WIN32_WINNT=0x0601)
    # The host and its libraries call with a stack aligned to four bytes only.
    # GCC 12 sees copies out of bounds in inlined short wide strings where there are none.
    add_compile_options(-mstackrealign -Wno-array-bounds -Wno-stringop-overread)
    add_link_options(-static -static-libgcc -static-libstdc++)
    # The linker's own defaults differ from one build of it to the next; without a time two builds are the same file.
    add_link_options(LINKER:--nxcompat,--dynamicbase,--no-insert-timestamp)
    set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
    set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
else()
    add_compile_definitions(_GLIBCXX_ASSERTIONS)
    find_package(Threads REQUIRED)
    link_libraries(Threads::Threads)
endif()
if(TARNHD_SANITIZE)
    add_compile_options(-fsanitize=${TARNHD_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${TARNHD_SANITIZE})
endif()

# Header-only libraries are copied out of the system's include folder one by one: that folder itself
# must not be seen by the cross compiler.
set(header_libraries ${CMAKE_BINARY_DIR}/header-libraries)
foreach(library nlohmann CLI spdlog fmt)
    if(NOT EXISTS ${header_libraries}/${library})
        file(COPY /usr/include/${library} DESTINATION ${header_libraries})
    endif()
endforeach()
add_library(header-libraries INTERFACE)
target_include_directories(header-libraries SYSTEM INTERFACE ${header_libraries})

# Makes a library's code small, which halves it: nearly all of it runs once per request. The FAST sources are
# for what runs per log call, settings read, scheduler round or patch.
function(tarnhd_small name)
    cmake_parse_arguments(arg "" "" "FAST" ${ARGN})
    if(WIN32)
        target_compile_options(${name} PRIVATE -Os)
        set_source_files_properties(${arg_FAST} PROPERTIES COMPILE_OPTIONS -O2)
    endif()
endfunction()

# tarnhd_library(NAME [PORTABLE source...] [WINDOWS source...] [FAST source...] [LINKS target...]
#     [WINDOWS_LINKS target...])
# A static library of a unit, LINKS being the units whose headers it includes. In sdk others may use what stands in
# include/; in src, devhost and tools an include names its unit from there. In the native flavour WINDOWS sources are left
# out, and a library without PORTABLE sources has its headers only. FAST: those of the sources for tarnhd_small.
function(tarnhd_library name)
    cmake_parse_arguments(arg "" "" "PORTABLE;WINDOWS;FAST;LINKS;WINDOWS_LINKS" ${ARGN})
    set(sources ${arg_PORTABLE})
    if(WIN32)
        list(APPEND sources ${arg_WINDOWS})
    endif()
    if(sources)
        add_library(${name} STATIC ${sources})
        tarnhd_small(${name} FAST ${arg_FAST})
        set(visibility PUBLIC)
    else()
        add_library(${name} INTERFACE)
        set(visibility INTERFACE)
    endif()
    set(includes include)
    set(own src)
    cmake_path(RELATIVE_PATH CMAKE_CURRENT_SOURCE_DIR BASE_DIRECTORY ${CMAKE_SOURCE_DIR} OUTPUT_VARIABLE place)
    if(place MATCHES "^(src|devhost|tools)/")
        set(includes ${CMAKE_SOURCE_DIR}/${CMAKE_MATCH_1})
        set(own)
    endif()
    target_include_directories(${name} ${visibility} ${includes})
    if(own AND sources)
        target_include_directories(${name} PRIVATE ${own})
    endif()
    target_link_libraries(${name} ${visibility} ${arg_LINKS})
    if(WIN32)
        target_link_libraries(${name} ${visibility} ${arg_WINDOWS_LINKS})
    endif()
endfunction()

# Leaves a program's map beside it: what is linked in, and how much of the program it takes.
function(tarnhd_map name)
    target_link_options(${name} PRIVATE LINKER:-Map,$<TARGET_FILE:${name}>.map)
endfunction()

# tarnhd_test(NAME SOURCES source... [LINKS target...] [INSIDE unit...] [NATIVE] [SERIAL] [REAL_LOG] [AT_TOP])
# A GoogleTest program; INSIDE names the sdk units whose own headers it includes; each case is a ctest test. Without NATIVE it is made in the product flavour
# only. SERIAL: it uses the product's fixed system names (events, mutexes, registry keys), so no other
# SERIAL test runs beside it. REAL_LOG: links the real logger instead of the one that captures lines. AT_TOP: it runs in
# the project's folder, where it finds pages and sources by paths that are no machine's own.
function(tarnhd_test name)
    cmake_parse_arguments(arg "NATIVE;SERIAL;REAL_LOG;AT_TOP" "" "SOURCES;LINKS;INSIDE" ${ARGN})
    if(NOT WIN32 AND NOT arg_NATIVE)
        return()
    endif()
    add_executable(${name} ${arg_SOURCES})
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests/support/include)
    foreach(unit IN LISTS arg_INSIDE)
        target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/sdk/${unit}/src)
    endforeach()
    target_link_libraries(${name} PRIVATE ${arg_LINKS} gmock_main header-libraries)
    target_precompile_headers(${name} REUSE_FROM test-headers)
    if(arg_REAL_LOG)
        target_link_libraries(${name} PRIVATE logging-backend)
    else()
        target_link_libraries(${name} PRIVATE log-capture)
    endif()
    if(NOT WIN32)
        target_link_libraries(${name} PRIVATE native-twins)
    else()
        target_link_libraries(${name} PRIVATE support-timelimit)
    endif()
    set(properties TIMEOUT 120)
    if(arg_SERIAL)
        list(APPEND properties RESOURCE_LOCK product-names)
    endif()
    set(folder ${CMAKE_CURRENT_BINARY_DIR})
    if(arg_AT_TOP)
        set(folder ${CMAKE_SOURCE_DIR})
    endif()
    gtest_discover_tests(${name} TEST_PREFIX ${name}. DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
        WORKING_DIRECTORY ${folder}
        PROPERTIES ${properties})
endfunction()
