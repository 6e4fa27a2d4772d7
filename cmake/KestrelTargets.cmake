# How a folder becomes a library, a program or a test. All compiler settings of the project stand here.

add_library(kestrel_options INTERFACE)
target_compile_options(kestrel_options INTERFACE
    -Wall -Wextra -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Werror
    # ccache and the sanitizers name files by their place in the project, not on this machine
    -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=
    # libstdc++ 12 marks what its own std::stable_sort calls as deprecated, and clang reports it at our call
    -U__DEPRECATED)
target_compile_definitions(kestrel_options INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_KEYWORDS QT_NO_FOREACH
    KESTREL_VERSION="${PROJECT_VERSION}")
target_include_directories(kestrel_options INTERFACE ${PROJECT_SOURCE_DIR}/src)

# What ships is what the benchmarks measure: both are built like this.
set(hardened $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
target_link_options(kestrel_options INTERFACE $<${hardened}:LINKER:-z,relro,-z,now,--build-id,--as-needed>)

if(KESTREL_SANITIZE)
    # fuzzer-no-link: the fuzz targets link these very libraries
    set(sanitizers -fsanitize=address,undefined,fuzzer-no-link -fno-sanitize-recover=all -fno-omit-frame-pointer)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        list(TRANSFORM sanitizers REPLACE ",fuzzer-no-link" "")
    endif()
    add_compile_options(${sanitizers})
    add_link_options(${sanitizers})
endif()

# One folder of src/ is one static library: Kestrel::<folder>. LINK names what the folder may include. With QML files it
# is one QML module too: Kestrel.<Folder>, which holds the folder's QML_ELEMENT types as well.
function(kestrel_library folder)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK;QML" ${ARGN})
    add_library(kestrel_${folder} STATIC ${ARG_SOURCES})
    add_library(Kestrel::${folder} ALIAS kestrel_${folder})
    target_link_libraries(kestrel_${folder} PUBLIC kestrel_options ${ARG_LINK})
    if(ARG_QML)
        string(SUBSTRING ${folder} 0 1 initial)
        string(TOUPPER ${initial} initial)
        string(SUBSTRING ${folder} 1 -1 rest)
        set(name ${initial}${rest})
        # no plugin: the program links the module, and the folder's C++ names its registration (see QuickScene)
        qt_add_qml_module(kestrel_${folder}
            URI Kestrel.${name}
            VERSION 1.0
            NO_PLUGIN
            RESOURCE_PREFIX /qt/qml
            DEPENDENCIES QtQuick
            OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/qml/Kestrel/${name}
            IMPORT_PATH ${CMAKE_BINARY_DIR}/qml
            QML_FILES ${ARG_QML})
        # what is generated includes the folder's headers by their bare names
        target_include_directories(kestrel_${folder} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
    endif()
endfunction()

function(kestrel_program name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE kestrel_options ${ARG_LINK})
endfunction()

# What every test runs with: folders of its own instead of the person's, no bus, an awkward zone and language.
# QT_NO_GLIB is not set: libsecret needs the GLib dispatcher.
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/test-home/runtime)
file(CHMOD ${CMAKE_BINARY_DIR}/test-home/runtime PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
set(KESTREL_TEST_ENVIRONMENT
    "HOME=${CMAKE_BINARY_DIR}/test-home"
    "XDG_CONFIG_HOME=${CMAKE_BINARY_DIR}/test-home/config"
    "XDG_DATA_HOME=${CMAKE_BINARY_DIR}/test-home/data"
    "XDG_STATE_HOME=${CMAKE_BINARY_DIR}/test-home/state"
    "XDG_CACHE_HOME=${CMAKE_BINARY_DIR}/test-home/cache"
    "XDG_RUNTIME_DIR=${CMAKE_BINARY_DIR}/test-home/runtime"
    "DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent"
    "QT_QPA_PLATFORM=offscreen"
    "TZ=America/St_Johns"
    "LANG=C.UTF-8"
    "LC_ALL=C.UTF-8"
    "ASAN_OPTIONS=detect_leaks=1"
    "UBSAN_OPTIONS=print_stacktrace=1")

# A Qt Test program in tests/<folder>/. WRAPPER is a command line that starts it (a private bus, say).
function(kestrel_test name)
    cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LINK;WRAPPER;ENVIRONMENT" ${ARGN})
    if(NOT ARG_SOURCES)
        set(ARG_SOURCES ${name}.cpp)
    endif()
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 60)
    endif()
    add_executable(${name} ${ARG_SOURCES})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_link_libraries(${name} PRIVATE kestrel_options ${ARG_LINK} Qt6::Test)
    add_test(NAME ${name} COMMAND ${ARG_WRAPPER} $<TARGET_FILE:${name}>)
    set_tests_properties(${name} PROPERTIES
        TIMEOUT ${ARG_TIMEOUT}
        ENVIRONMENT "${KESTREL_TEST_ENVIRONMENT};${ARG_ENVIRONMENT}")
endfunction()
