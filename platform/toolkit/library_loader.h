#pragma once

#include <QLibrary>
#include <QString>

#include <functional>
#include <optional>

namespace platform {

/// A plug-in library's start-up and process-detach procedures. The library registers them while the dynamic loader loads it
/// (nothing may fail there); TLibrary runs them right after loading and before unloading.
struct LibraryProcedures {
    std::function<void()> startUp;
    std::function<void()> detach;
};

/// Called by a static object of the library that is being loaded.
struct LibraryRegistration {
    explicit LibraryRegistration(LibraryProcedures procedures);
};

} // namespace platform

/// A loaded plug-in library.
class TLibrary {
public:
    /// Loads the library and runs its start-up. Throws Exception when the file cannot be loaded or the start-up raises: then the
    /// library's detach procedure has run and it is unloaded again.
    explicit TLibrary(const QString &path);
    TLibrary(const TLibrary &) = delete;
    /// Runs the detach procedure and unloads.
    ~TLibrary();

    /// The address of an exported function; throws Exception when there is none.
    QFunctionPointer resolve(const char *symbol);

private:
    std::optional<QString> startUp();
    void detach();
    QLibrary m_library;
    platform::LibraryProcedures m_procedures;
};
