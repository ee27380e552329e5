#pragma once

#include <cstdint>
#include <memory>

/// Passes the bytes of TCP connections on to a port of 127.0.0.1, and fails as lines do.
class CuttingProxy {
public:
    enum class Cut {
        Close, ///< as if the target had ended
        Reset, ///< as if a device on the way had failed
    };

    explicit CuttingProxy(std::uint16_t target);
    CuttingProxy(const CuttingProxy &) = delete;
    ~CuttingProxy();

    std::uint16_t port() const;
    /// Every connection, open or to come, breaks after so many further bytes from the target.
    void cutAfter(std::uint64_t bytes, Cut how = Cut::Reset);
    /// Passes nothing on any more, without a word to either side; connections stay open.
    void freeze();

private:
    struct State;
    std::unique_ptr<State> m_state;
};
