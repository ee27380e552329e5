#pragma once

#include <cstdint>
#include <memory>

namespace server::test {

/// Passes one connection on to a server and breaks it at a given byte of the answer.
class CuttingProxy {
public:
    enum class Cut {
        Close, ///< as if the sender had ended
        Reset, ///< as if a device on the way had failed
    };

    CuttingProxy(std::uint16_t serverPort, std::uint64_t bytes, Cut cut);
    CuttingProxy(const CuttingProxy &) = delete;
    ~CuttingProxy();
    std::uint16_t port() const;

private:
    struct Relay;
    std::unique_ptr<Relay> m_relay;
};

} // namespace server::test
