# `cpack` makes kelvara-client and kelvara-server as Debian packages; packaging/package calls it.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kelvara)
set(CPACK_PACKAGE_VERSION ${KELVARA_VERSION})
set(CPACK_PACKAGE_CONTACT "Kelvara maintainers <maintainers@kelvara.invalid>")
set(CPACK_COMPONENTS_ALL client server)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE kelvara)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(debian ${PROJECT_SOURCE_DIR}/packaging/debian)
set(CPACK_DEBIAN_CLIENT_PACKAGE_NAME kelvara-client)
set(CPACK_DEBIAN_CLIENT_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_CLIENT_PACKAGE_RECOMMENDS "fonts-noto-cjk, qt6-translations-l10n, cups-client")
set(CPACK_COMPONENT_CLIENT_DESCRIPTION "queries and reports of an express-parcel network
The desktop client of branch offices: finds parcels that were scanned
here but not there, counts what each operator did, settles fees and
prints the month's lists. All its texts are in Simplified Chinese.")
set(CPACK_DEBIAN_SERVER_PACKAGE_NAME kelvara-server)
set(CPACK_DEBIAN_SERVER_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_SERVER_PACKAGE_DEPENDS adduser)
set(CPACK_DEBIAN_SERVER_PACKAGE_RECOMMENDS logrotate)
set(CPACK_COMPONENT_SERVER_DESCRIPTION "application server of an express-parcel network
Runs the SELECT statements of many kelvara-clients over HTTPS: logins,
fair queues, limits, an audit log, a graceful end. kelvara-demo makes a
database to try it with.")

# dpkg takes the names of these files as they are.
foreach(component CLIENT SERVER)
    string(TOLOWER ${component} name)
    set(controls)
    file(MAKE_DIRECTORY ${texts_folder}/${name})
    file(GLOB sources ${debian}/${name}.*)
    foreach(source IN LISTS sources)
        get_filename_component(extension ${source} LAST_EXT)
        string(SUBSTRING ${extension} 1 -1 control)
        file(COPY_FILE ${source} ${texts_folder}/${name}/${control} ONLY_IF_DIFFERENT)
        list(APPEND controls ${texts_folder}/${name}/${control})
    endforeach()
    set(CPACK_DEBIAN_${component}_PACKAGE_CONTROL_EXTRA ${controls})
endforeach()

string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
foreach(name client server)
    file(WRITE ${texts_folder}/${name}/changelog.Debian "kelvara (${KELVARA_VERSION}-1) stable; urgency=medium

  * See the history of the sources.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
    execute_process(COMMAND gzip -9nf ${texts_folder}/${name}/changelog.Debian COMMAND_ERROR_IS_FATAL ANY)
    install(FILES ${debian}/copyright ${texts_folder}/${name}/changelog.Debian.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/kelvara-${name} COMPONENT ${name})
endforeach()
include(CPack)
