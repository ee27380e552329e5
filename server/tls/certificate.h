#pragma once

#include <filesystem>

namespace server {

/// Makes a certificate that vouches for itself, for localhost, 127.0.0.1 and ::1, and its key; PEM files, the key's readable for
/// its owner alone. Throws std::runtime_error.
void makeLocalCertificate(const std::filesystem::path &certificateFile, const std::filesystem::path &keyFile);

} // namespace server
