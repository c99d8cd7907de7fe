# `cmake --install <build> --prefix <folder>`: what a program needs to build against the driver and to run with it. What is
# installed finds everything else relative to itself: the folder may be moved. The components are named in
# docs/installation.md; those of the Debian packages are made of them.
include(GNUInstallDirs)

# Where libraries go is decided when they are installed: Debian has a folder for each architecture below /usr, and no other
# prefix has. One build serves both.
set(KVX_DEBIAN_LIBDIR ${CMAKE_INSTALL_LIBDIR})
if(CMAKE_LIBRARY_ARCHITECTURE AND CMAKE_INSTALL_LIBDIR STREQUAL "lib")
    set(KVX_DEBIAN_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE})
endif()
install(CODE "
if(CMAKE_INSTALL_PREFIX MATCHES \"(^|/)usr/?$\")
    set(KVX_LIBDIR ${KVX_DEBIAN_LIBDIR})
else()
    set(KVX_LIBDIR ${CMAKE_INSTALL_LIBDIR})
endif()" ALL_COMPONENTS)
set(libdir "\${KVX_LIBDIR}")
# What programs other than the driver must not find: our VISA in the place of a vendor's.
set(private_libdir ${libdir}/kvx2800t)
set(private_includedir ${CMAKE_INSTALL_INCLUDEDIR}/kvx2800t)
set(docdir ${CMAKE_INSTALL_DATAROOTDIR}/doc/kvx2800t)

# kvx_install_configured(<FILES or PROGRAMS> <file>.in <folder> <component>)
# A file that says where others are, as seen from where it is installed.
function(kvx_install_configured kind template folder component)
    get_filename_component(name ${template} NAME_WLE)
    foreach(libdir ${CMAKE_INSTALL_LIBDIR} ${KVX_DEBIAN_LIBDIR})
        file(RELATIVE_PATH KVX_LIBDIR_TO_PREFIX /${libdir} /)
        file(RELATIVE_PATH KVX_BINDIR_TO_LIBDIR /${CMAKE_INSTALL_BINDIR} /${libdir})
        configure_file(${template} ${libdir}/${name} @ONLY)
    endforeach()
    install(${kind} "${CMAKE_CURRENT_BINARY_DIR}/\${KVX_LIBDIR}/${name}" DESTINATION ${folder} COMPONENT ${component})
endfunction()

install(TARGETS KVX2800T LIBRARY DESTINATION ${libdir} COMPONENT runtime NAMELINK_COMPONENT development)

install(FILES ${PROJECT_SOURCE_DIR}/api/KVX2800T.h ${PROJECT_SOURCE_DIR}/api/KVX2800TInstrument.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
kvx_install_configured(FILES posix/kvx2800t.pc.in ${libdir}/pkgconfig development)
kvx_install_configured(FILES posix/KVX2800TConfig.cmake.in ${libdir}/cmake/KVX2800T development)
include(CMakePackageConfigHelpers)
write_basic_package_version_file(KVX2800TConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/KVX2800TConfigVersion.cmake
    DESTINATION ${libdir}/cmake/KVX2800T COMPONENT development)

if(NOT KVX_VENDOR_IVI)
    install(TARGETS IviCShared IviConfigServer LIBRARY DESTINATION ${private_libdir} COMPONENT platform)
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/platform/include/ DESTINATION ${private_includedir} COMPONENT development)
    install(TARGETS kvx2800t-store RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
endif()
if(NOT KVX_VENDOR_VISA)
    # The driver takes libvisa.so of the private folder, a link that kvx2800t-visa changes. Who has changed it keeps that.
    install(TARGETS visa LIBRARY DESTINATION ${private_libdir}/own COMPONENT platform)
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/visa/include/ DESTINATION ${private_includedir} COMPONENT development)
    install(CODE "
set(link \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/\${KVX_LIBDIR}/kvx2800t/libvisa.so\")
if(NOT IS_SYMLINK \"\${link}\")
    file(CREATE_LINK own/libvisa.so \"\${link}\" SYMBOLIC)
endif()" COMPONENT visa-link)
    kvx_install_configured(PROGRAMS posix/kvx2800t-visa.in ${CMAKE_INSTALL_BINDIR} platform)
    if(KVX_LIBUSB)
        # udev reads it below /usr and /usr/local. With --component usb-permissions it is installed alone.
        install(FILES ${PROJECT_SOURCE_DIR}/packaging/linux/70-kvvisa-usbtmc.rules
            DESTINATION lib/udev/rules.d COMPONENT usb-permissions)
    endif()
endif()

install(TARGETS kvx2800t-virtual RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
# It finds the driver in the folder beside its own; in /usr the system does.
set_target_properties(kvx2800t PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
install(TARGETS kvx2800t RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
install(CODE "
if(CMAKE_INSTALL_PREFIX MATCHES \"(^|/)usr/?$\")
    file(RPATH_REMOVE FILE \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/kvx2800t\")
endif()" COMPONENT tools)
install(TARGETS visatrace LIBRARY DESTINATION ${private_libdir} COMPONENT tools)
set(completions ${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions)
install(FILES posix/completion.bash DESTINATION ${completions} COMPONENT tools RENAME kvx2800t-store)
install(CODE "
foreach(program kvx2800t kvx2800t-virtual)
    file(CREATE_LINK kvx2800t-store
        \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${completions}/\${program}\" SYMBOLIC)
endforeach()" COMPONENT tools)
install(FILES ${PROJECT_SOURCE_DIR}/examples/IviConfigurationStore.xml DESTINATION ${docdir}/examples COMPONENT tools)
include(posix/man_pages.cmake)

# Python takes the driver that is installed, not one of its own.
install(DIRECTORY ${PROJECT_BINARY_DIR}/python_package/kvx2800t DESTINATION lib/python3/dist-packages COMPONENT python OPTIONAL
    PATTERN lib EXCLUDE PATTERN __pycache__ EXCLUDE)

# So does the assembly for C#, which is the same on every architecture.
if(TARGET csharp)
    install(FILES ${KVX_ASSEMBLY} ${PROJECT_BINARY_DIR}/csharp/Kvx2800t.xml DESTINATION lib/cli/kvx2800t
        COMPONENT csharp OPTIONAL)
    configure_file(posix/kvx2800t-cil.pc.in kvx2800t-cil.pc @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/kvx2800t-cil.pc DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/pkgconfig
        COMPONENT csharp)
endif()

install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${docdir} COMPONENT license)
install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md ${PROJECT_SOURCE_DIR}/docs/installation.md
    DESTINATION ${docdir} COMPONENT doc)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/ DESTINATION ${docdir}/examples COMPONENT doc
    PATTERN CMakeLists.txt EXCLUDE PATTERN IviConfigurationStore.xml EXCLUDE PATTERN __pycache__ EXCLUDE)
# Written by the target `help_files`.
install(DIRECTORY ${PROJECT_BINARY_DIR}/help/html DESTINATION ${docdir} COMPONENT doc OPTIONAL)
install(FILES ${PROJECT_BINARY_DIR}/help/KVX2800T.pdf DESTINATION ${docdir} COMPONENT doc OPTIONAL)

include(debian/packages.cmake)
