// What a client can send before it has shown a password: the bytes of a request in pieces of several sizes, and the parts of it that are
// read further.

#include "server/base/json.h"
#include "server/http/request_reader.h"
#include "server/statements/result_format.h"
#include "server/users/token.h"
#include "tests/fuzz/require.h"

#include <algorithm>

namespace {

using State = server::RequestReader::State;

/// Gives the bytes to a reader as a connection does: what it does not take yet comes again with what follows. Returns how many it used.
std::size_t readInPieces(server::RequestReader &reader, std::string_view bytes, std::size_t pieceSize)
{
    std::string input;
    std::size_t used = 0;
    while (!bytes.empty() && reader.state() != State::Done && reader.state() != State::Failed) {
        const auto piece = bytes.substr(0, pieceSize);
        bytes.remove_prefix(piece.size());
        input += piece;
        const std::size_t taken = reader.put(input);
        require(taken <= input.size());
        input.erase(0, taken);
        used += taken;
    }
    return used;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    constexpr std::size_t limit = 1024; // so that small inputs reach it
    const std::string_view bytes(reinterpret_cast<const char *>(data), size);
    server::RequestReader whole(limit, limit);
    const std::size_t used = readInPieces(whole, bytes, std::max<std::size_t>(size, 1));
    const bool isDone = whole.state() == State::Done;
    for (const std::size_t pieceSize : { std::size_t(1), size / 3 + 1 }) {
        server::RequestReader pieces(limit, limit);
        const std::size_t usedOfPieces = readInPieces(pieces, bytes, pieceSize);
        require(isDone == (pieces.state() == State::Done));
        require(!isDone || (used == usedOfPieces && whole.request().body == pieces.request().body));
    }
    if (!isDone)
        return 0;
    const server::Request &request = whole.request();
    require(request.body.size() <= limit && (request.hasBody || request.body.empty()));
    server::acceptedFormat(request.accept);
    (void)request.parameter("database");
    require(!server::TokenKey(std::string(32, 'k')).verify(request.authorization));
    if (const auto texts = server::readJsonTexts(request.body)) {
        std::string written = "{";
        for (const auto &[name, text] : *texts)
            written += (written.size() > 1 ? "," : "") + server::jsonText(name) + ":" + server::jsonText(text);
        // Broken UTF-8 is mended, whereby names may become alike.
        const auto again = server::readJsonTexts(written + "}");
        require(!again || again->size() == texts->size());
    }
    return 0;
}
