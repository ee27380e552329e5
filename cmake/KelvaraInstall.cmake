# What `cmake --install` puts where. The client, its plug-ins and their reports lie in one folder, as they find each other beside
# the program; bin/ holds a link to it.
include(GNUInstallDirs)
set(program_folder lib/kelvara)

install(TARGETS kelvara-client RUNTIME DESTINATION ${program_folder} COMPONENT client)
install(TARGETS platform Kelvara1 Guest LIBRARY DESTINATION ${program_folder} RUNTIME DESTINATION ${program_folder} COMPONENT client)
install(DIRECTORY reports/ DESTINATION ${program_folder}/Report COMPONENT client FILES_MATCHING PATTERN "*.frf")
install(CODE "
    file(MAKE_DIRECTORY \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}\")
    file(CREATE_LINK ../${program_folder}/kelvara-client
        \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/kelvara-client\" SYMBOLIC)" COMPONENT client)

install(TARGETS kelvara-server RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT server)
install(FILES server/kelvara-server.conf DESTINATION ${CMAKE_INSTALL_FULL_SYSCONFDIR}/kelvara COMPONENT server)
install(FILES packaging/kelvara-server.service DESTINATION lib/systemd/system COMPONENT server)
install(FILES packaging/kelvara-server.logrotate DESTINATION ${CMAKE_INSTALL_FULL_SYSCONFDIR}/logrotate.d RENAME kelvara-server COMPONENT server)
install(TARGETS kelvara-demo RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT demo)
