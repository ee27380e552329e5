#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

namespace simulation {

/// What becomes of one connection. Bytes are counted as they pass, encrypted, in one direction.
struct LinePlan {
    enum class Fault {
        None,
        Refused, ///< before anything passes
        Closed, ///< as if the other end had gone
        Reset, ///< as if a device on the way had failed
        Silent, ///< nothing passes any more, in neither direction, and nobody is told
        HalfOpen, ///< the same in one direction; the other one goes on
        Flipped, ///< one bit arrives wrong
    };
    enum class Direction { ToServer, ToClient };

    Fault fault = Fault::None;
    Direction direction = Direction::ToClient; ///< whose bytes are counted
    std::uint64_t after = 0; ///< bytes that pass before the fault
    std::size_t largestPiece = 16 * 1024;
    std::chrono::microseconds pieceDelay {}; ///< before each piece
    std::chrono::milliseconds connectDelay {}; ///< before the connection goes on to the server, so that others overtake it
};

/// Passes TCP connections of this machine on to servers of this machine, and fails them as they are planned. Works on a thread of its own.
class FaultyNetwork {
public:
    /// Where a connection of a gate goes, by the gate's number and the connection's; called on the network's thread.
    using Plan = std::function<LinePlan(std::size_t gate, std::size_t connection)>;

    explicit FaultyNetwork(Plan plan);
    FaultyNetwork(const FaultyNetwork &) = delete;
    /// Breaks what is open.
    ~FaultyNetwork();

    /// A further gate, whose connections go on to the port that `target` holds when they come; 0: nobody is there. Returns the gate's port.
    /// To be called before anyone connects; `target` lives as long as the network.
    std::uint16_t addGate(const std::atomic<std::uint16_t> &target);
    /// Counts the connections of a gate and the pieces that its clients have sent.
    std::uint64_t clientActs(std::size_t gate) const;

private:
    class Line;
    struct Gate;
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace simulation
