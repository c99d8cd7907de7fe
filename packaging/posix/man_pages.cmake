# Manual pages of what the programs say of themselves: the target `man_pages`, where help2man is installed.
find_program(KVX_HELP2MAN help2man)
find_program(KVX_GZIP gzip)
add_custom_target(man_pages)
set(man_folder ${CMAKE_CURRENT_BINARY_DIR}/man)
install(DIRECTORY ${man_folder}/platform/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT platform OPTIONAL)
install(DIRECTORY ${man_folder}/tools/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools OPTIONAL)
if(NOT KVX_HELP2MAN OR NOT KVX_GZIP OR CMAKE_CROSSCOMPILING OR KVX_VENDOR_IVI OR KVX_VENDOR_VISA)
    return()
endif()

set(see_also ${CMAKE_CURRENT_SOURCE_DIR}/posix/man_pages.h2m)

# kvx_add_man_page(<component> <page> <what it is> <command> <what is run, a target or file>)
function(kvx_add_man_page component page purpose command)
    set(file ${man_folder}/${component}/${page}.1)
    add_custom_command(OUTPUT ${file}.gz VERBATIM
        COMMAND ${CMAKE_COMMAND} -E make_directory ${man_folder}/${component}
        COMMAND ${KVX_HELP2MAN} --no-info --source "${PROJECT_NAME} ${PROJECT_VERSION}" --manual "KVX2800T driver"
                --version-string ${PROJECT_VERSION} --name ${purpose} --include ${see_also} --output ${file} ${command}
        COMMAND ${CMAKE_COMMAND} -D FILE=${file} -D PAGE=${page} -P ${CMAKE_CURRENT_SOURCE_DIR}/posix/name_man_page.cmake
        COMMAND ${KVX_GZIP} -9nf ${file}
        DEPENDS ${see_also} ${ARGN})
    add_custom_target(man_${page} DEPENDS ${file}.gz)
    add_dependencies(man_pages man_${page})
endfunction()

kvx_add_man_page(tools kvx2800t "look at KVX2800T power supplies and drive them"
    "$<TARGET_FILE:kvx2800t> --help-all" kvx2800t)
kvx_add_man_page(tools kvx2800t-virtual "a power supply in software"
    $<TARGET_FILE:kvx2800t-virtual> kvx2800t-virtual)
kvx_add_man_page(tools kvx2800t-store "look after an IVI configuration store"
    $<TARGET_FILE:kvx2800t-store> kvx2800t-store)
kvx_add_man_page(tools kvx2800t-store-list "show sessions and names of an IVI configuration store"
    "$<TARGET_FILE:kvx2800t-store> list" kvx2800t-store)
kvx_add_man_page(tools kvx2800t-store-add "add a driver session to an IVI configuration store"
    "$<TARGET_FILE:kvx2800t-store> add" kvx2800t-store)
kvx_add_man_page(tools kvx2800t-store-remove "remove a driver session from an IVI configuration store"
    "$<TARGET_FILE:kvx2800t-store> remove" kvx2800t-store)
kvx_add_man_page(tools kvx2800t-store-register "register the KVX2800T driver in an IVI configuration store"
    "$<TARGET_FILE:kvx2800t-store> register" kvx2800t-store)
kvx_add_man_page(tools kvx2800t-store-unregister "take the KVX2800T driver out of an IVI configuration store"
    "$<TARGET_FILE:kvx2800t-store> unregister" kvx2800t-store)
kvx_add_man_page(tools kvx2800t-store-check "check an IVI configuration store"
    "$<TARGET_FILE:kvx2800t-store> check" kvx2800t-store)
kvx_add_man_page(platform kvx2800t-visa "tell or change which VISA library the KVX2800T driver uses"
    "sh ${CMAKE_CURRENT_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR}/kvx2800t-visa"
    ${CMAKE_CURRENT_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR}/kvx2800t-visa)
