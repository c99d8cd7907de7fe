# The Debian packages, which CPack makes of the components that are installed: packaging/debian/package.sh.
find_program(KVX_DPKG dpkg-shlibdeps)
if(NOT KVX_DPKG OR NOT KVX_GZIP OR CMAKE_CROSSCOMPILING OR KVX_VENDOR_IVI OR KVX_VENDOR_VISA)
    return()
endif()

set(debian ${CMAKE_CURRENT_BINARY_DIR}/debian)

set(CPACK_GENERATOR DEB)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_NAME kvx2800t)
# Each package says what it is.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGE_VENDOR "Tessaro Instruments")
set(CPACK_PACKAGE_CONTACT "Tessaro Instruments <support@tessaro-instruments.example>")
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_COMPONENTS_ALL "")

# What Debian wants of every package beside its files.
configure_file(debian/changelog.in ${debian}/changelog @ONLY)
execute_process(COMMAND ${KVX_GZIP} -9nf ${debian}/changelog COMMAND_ERROR_IS_FATAL ANY)

# kvx_debian_package(<name> [INDEPENDENT] COMPONENTS <component>... SECTION <section> SUMMARY <text> DESCRIPTION <text>
#     [DEPENDS <packages>] [RECOMMENDS <packages>] [SUGGESTS <packages>] [CONTROL <file>...])
# INDEPENDENT: the same on every architecture. CONTROL: what dpkg is told beside what CPack writes.
macro(kvx_debian_package name)
    cmake_parse_arguments(
        ARG "INDEPENDENT" "SECTION;SUMMARY;DESCRIPTION;DEPENDS;RECOMMENDS;SUGGESTS" "COMPONENTS;CONTROL" ${ARGN})
    string(TOUPPER ${name} group)
    set(of_debian debian-${name})
    install(FILES debian/copyright ${debian}/changelog.gz
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${name} COMPONENT ${of_debian} EXCLUDE_FROM_ALL)
    foreach(component ${ARG_COMPONENTS} ${of_debian})
        string(TOUPPER ${component} component_variable)
        set(CPACK_COMPONENT_${component_variable}_GROUP ${name})
        list(APPEND CPACK_COMPONENTS_ALL ${component})
    endforeach()
    set(CPACK_DEBIAN_${group}_PACKAGE_NAME ${name})
    set(CPACK_DEBIAN_${group}_PACKAGE_SECTION ${ARG_SECTION})
    set(CPACK_DEBIAN_${group}_DESCRIPTION "${ARG_SUMMARY}\n${ARG_DESCRIPTION}")
    foreach(relation DEPENDS RECOMMENDS SUGGESTS)
        set(CPACK_DEBIAN_${group}_PACKAGE_${relation} "${ARG_${relation}}")
    endforeach()
    set(CPACK_DEBIAN_${group}_PACKAGE_CONTROL_EXTRA "${ARG_CONTROL}")
    if(ARG_INDEPENDENT)
        set(CPACK_DEBIAN_${group}_PACKAGE_ARCHITECTURE all)
        set(CPACK_DEBIAN_${group}_PACKAGE_SHLIBDEPS OFF)
    endif()
endmacro()

# Programs depend on a driver that is no older than the one they were built with.
file(STRINGS ${PROJECT_SOURCE_DIR}/api/exports.txt functions)
list(SORT functions)
list(TRANSFORM functions REPLACE ".+" " \\0@${KVX_DRIVER_NODE} ${PROJECT_VERSION}")
list(JOIN functions "\n" functions)
file(CONFIGURE OUTPUT ${debian}/symbols @ONLY NEWLINE_STYLE UNIX CONTENT
"libKVX2800T.so.1 libkvx2800t1 #MINVER#
* Build-Depends-Package: libkvx2800t-dev
 @KVX_DRIVER_NODE@@@KVX_DRIVER_NODE@ @PROJECT_VERSION@
@functions@
")
file(WRITE ${debian}/shlibs "libKVX2800T 1 libkvx2800t1 (>= ${PROJECT_VERSION})\n")

set(private_folder /usr/${KVX_DEBIAN_LIBDIR}/kvx2800t)
set(visa_alternative kvx2800t-libvisa.so-${CMAKE_LIBRARY_ARCHITECTURE})
foreach(script postinst prerm)
    configure_file(debian/kvx2800t-platform.${script}.in ${debian}/kvx2800t-platform/${script} @ONLY
        FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
    configure_file(debian/python3-kvx2800t.${script} ${debian}/python3-kvx2800t/${script} COPYONLY)
endforeach()

kvx_debian_package(libkvx2800t1
    COMPONENTS runtime
    SECTION libs
    SUMMARY "IVI-C driver for KVX2800T power supplies"
    DESCRIPTION "The KVX2800T are programmable DC power supplies with several channels. Test
programs configure and read them through this driver of the instrument class
IviDCPwr, which talks SCPI over VISA."
    DEPENDS "kvx2800t-platform (= ${PROJECT_VERSION})"
    SUGGESTS "kvx2800t-tools, kvx2800t-doc"
    # The trigger has ldconfig run. CPack would write scripts that call it, too, but for the names of two that are not there.
    CONTROL ${debian}/symbols ${debian}/shlibs ${CMAKE_CURRENT_SOURCE_DIR}/debian/triggers
        ${debian}/absent/postinst ${debian}/absent/postrm)

kvx_debian_package(libkvx2800t-dev
    COMPONENTS development
    SECTION libdevel
    SUMMARY "IVI-C driver for KVX2800T power supplies - development files"
    DESCRIPTION "The headers of the driver and of the types that it uses, and what pkg-config
and CMake need to find it."
    DEPENDS "libkvx2800t1 (= ${PROJECT_VERSION})"
    SUGGESTS "kvx2800t-doc")

kvx_debian_package(kvx2800t-platform
    COMPONENTS platform
    SECTION libs
    SUMMARY "VISA and IVI components for the KVX2800T driver"
    DESCRIPTION "The KVX2800T driver stands on VISA, the IVI session service and the IVI
configuration server. This package has small ones of these for the driver
alone: in a folder of its own, where other programs do not find them.
.
The command kvx2800t-visa makes the driver use a vendor's VISA instead."
    CONTROL ${debian}/kvx2800t-platform/postinst ${debian}/kvx2800t-platform/prerm)

kvx_debian_package(kvx2800t-tools
    COMPONENTS tools usb-permissions
    SECTION electronics
    SUMMARY "virtual instrument and tools for KVX2800T power supplies"
    DESCRIPTION "kvx2800t finds power supplies, tells why a connection fails, shows and sets
what they do, logs readings and serves a front panel to the browser.
.
kvx2800t-virtual is a KVX2833T power supply in software, behind a TCP socket,
HiSLIP, VXI-11 or a serial line. kvx2800t-store looks after the file of an IVI
configuration store. libvisatrace.so writes down what programs ask of a VISA
library. A rule for udev lets users reach instruments on USB."
    DEPENDS "libkvx2800t1 (>= ${PROJECT_VERSION})"
    SUGGESTS "kvx2800t-doc, udev")

kvx_debian_package(python3-kvx2800t INDEPENDENT
    COMPONENTS python
    SECTION python
    SUMMARY "KVX2800T power supplies in Python"
    DESCRIPTION "Sessions on KVX2800T power supplies and their channels as Python objects, on
top of the IVI-C driver."
    DEPENDS "python3 (>= 3.9), libkvx2800t1 (>= ${PROJECT_VERSION})"
    CONTROL ${debian}/python3-kvx2800t/postinst ${debian}/python3-kvx2800t/prerm)

# A program that uses it brings mono or another .NET: it is found in both.
if(TARGET csharp)
    kvx_debian_package(libkvx2800t-cil INDEPENDENT
        COMPONENTS csharp
        SECTION cli-mono
        SUMMARY "KVX2800T power supplies in C#"
        DESCRIPTION "Sessions on KVX2800T power supplies and their channels as objects of C# and
other languages of .NET, on top of the IVI-C driver. The assembly is found by
pkg-config as kvx2800t-cil."
        DEPENDS "libkvx2800t1 (>= ${PROJECT_VERSION})"
        RECOMMENDS "mono-runtime, libmono-system4.0-cil, libmono-system-core4.0-cil"
        SUGGESTS "kvx2800t-doc, mono-mcs")
endif()

install(FILES debian/kvx2800t-doc.doc-base DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc-base
    RENAME kvx2800t-doc.kvx2800t COMPONENT debian-kvx2800t-doc EXCLUDE_FROM_ALL)
kvx_debian_package(kvx2800t-doc INDEPENDENT
    COMPONENTS doc
    SECTION doc
    SUMMARY "IVI-C driver for KVX2800T power supplies - help and examples"
    DESCRIPTION "The help of the driver as HTML and PDF: guides and a reference of all functions
and attributes. Examples in C, C++ and Python.")

# What has to be built for them. Help, Python package and assembly take programs that not every machine has.
add_custom_target(package_files)
add_dependencies(package_files
    KVX2800T IviCShared IviConfigServer visa visatrace kvx2800t kvx2800t-store kvx2800t-virtual man_pages)
foreach(target help_files python_package csharp)
    if(TARGET ${target})
        add_dependencies(package_files ${target})
    endif()
endforeach()

include(CPack)
