# What `cmake --install` puts where, by component. The client, its plug-ins and their reports lie in one folder, as they find each other
# beside the program; bin/ holds a link to it.
include(GNUInstallDirs)
set(program_folder lib/kelvara)

# Configuration is the system's when the programs are; else the server is told where it lies, and the client finds it beside itself.
install(CODE [[
    set(etc etc)
    if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
        set(etc "${CMAKE_INSTALL_PREFIX}/etc")
    endif()]] COMPONENT server)
install(CODE [[
    set(client_settings etc/kelvara)
    if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
        set(client_settings "${CMAKE_INSTALL_PREFIX}/lib/kelvara")
    endif()]] COMPONENT client)

# kelvara_text(file program command...): a file that a program writes, as it knows best what its options are.
set(texts_folder ${PROJECT_BINARY_DIR}/installed)
function(kelvara_text file program)
    add_custom_command(OUTPUT ${texts_folder}/${file} COMMAND ${ARGN} WORKING_DIRECTORY ${texts_folder}
        DEPENDS ${program} ${PROJECT_SOURCE_DIR}/packaging/man-page VERBATIM)
    set_property(GLOBAL APPEND PROPERTY KELVARA_TEXTS ${texts_folder}/${file})
endfunction()
function(kelvara_manual program summary)
    kelvara_text(${program}.1.gz ${program} ${PROJECT_SOURCE_DIR}/packaging/man-page $<TARGET_FILE:${program}> 1 ${summary} ${ARGN})
endfunction()

install(TARGETS kelvara-client RUNTIME DESTINATION ${program_folder} COMPONENT client)
install(TARGETS platform Kelvara1 Guest
    LIBRARY DESTINATION ${program_folder} COMPONENT client
    RUNTIME DESTINATION ${program_folder} COMPONENT client)
install(DIRECTORY reports/ DESTINATION ${program_folder}/Report COMPONENT client FILES_MATCHING PATTERN "*.frf")
install(FILES docs/安装手册.md docs/automation.md docs/report-files.md docs/reports-at-night.md
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/kelvara-client COMPONENT client)
install(TARGETS kelvara-server kelvara-demo RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT server)
install(FILES docs/安装手册.md docs/operations.md docs/databases.md demo/schema.sql
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/kelvara-server COMPONENT server)
if(WIN32)
    install(FILES server/kelvara-server.conf DESTINATION etc/kelvara COMPONENT server)
    return()
endif()

set_target_properties(kelvara-server kelvara-demo PROPERTIES INSTALL_RPATH "")
install(CODE "
    file(MAKE_DIRECTORY \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}\")
    file(CREATE_LINK ../${program_folder}/kelvara-client
        \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/kelvara-client\" SYMBOLIC)" COMPONENT client)
install(FILES packaging/kelvara-report.service packaging/kelvara-report.timer
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/kelvara-client/examples COMPONENT client)
install(FILES packaging/desktop/kelvara-client.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT client)
install(FILES packaging/desktop/kelvara-client.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps COMPONENT client)
string(TIMESTAMP KELVARA_RELEASE_DATE "%Y-%m-%d")
configure_file(packaging/desktop/kelvara-client.metainfo.xml ${texts_folder}/io.github.kelvara.client.metainfo.xml @ONLY)
install(FILES ${texts_folder}/io.github.kelvara.client.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo COMPONENT client)
install(FILES server/kelvara-server.conf DESTINATION "/\${etc}/kelvara" COMPONENT server)
install(FILES packaging/kelvara-server.service DESTINATION lib/systemd/system COMPONENT server)
install(FILES packaging/kelvara-server.logrotate DESTINATION "/\${etc}/logrotate.d" RENAME kelvara-server COMPONENT server)

foreach(owner client:kelvara-client server:kelvara-server server:kelvara-demo)
    string(REPLACE : ";" owner ${owner})
    list(GET owner 0 component)
    list(GET owner 1 program)
    install(FILES packaging/completion.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME ${program}
        COMPONENT ${component})
    # What a program for another system says cannot be asked here.
    if(NOT CMAKE_CROSSCOMPILING)
        install(FILES ${texts_folder}/${program}.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT ${component})
    endif()
endforeach()
if(CMAKE_CROSSCOMPILING)
    return()
endif()
kelvara_manual(kelvara-client "快递网络查询与报表系统的客户端" report)
kelvara_manual(kelvara-server "快递网络查询与报表系统的应用服务器")
kelvara_manual(kelvara-demo "生成演示用的快递网络数据库")
kelvara_text(kelvara-client.conf kelvara-client
    sh -c "QT_QPA_PLATFORM=offscreen '$<TARGET_FILE:kelvara-client>' --print-settings >kelvara-client.conf")
kelvara_text(使用手册.pdf kelvara-client
    sh -c "QT_QPA_PLATFORM=offscreen '$<TARGET_FILE:kelvara-client>' --config /dev/null --settings . --write-guide .")
install(FILES ${texts_folder}/使用手册.pdf DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/kelvara-client COMPONENT client)
install(FILES ${texts_folder}/kelvara-client.conf DESTINATION "/\${client_settings}" COMPONENT client)
get_property(texts GLOBAL PROPERTY KELVARA_TEXTS)
add_custom_target(installed_texts ALL DEPENDS ${texts})
