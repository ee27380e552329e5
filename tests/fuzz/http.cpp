// What a client can send before it has shown a password: the bytes of a request in two pieces, and the parts of it that are read further.

#include "server/base/json.h"
#include "server/http/request.h"
#include "server/statements/result_format.h"
#include "server/users/token.h"

#include <cstdlib>
#include <span>

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

/// Gives the bytes to a reader as a connection does: what it does not take yet comes again with what follows.
void readInPieces(server::RequestReader &reader, std::string_view first, std::string_view rest)
{
    using State = server::RequestReader::State;
    std::string input(first);
    for (const std::string_view next : { std::string_view(), rest }) {
        input += next;
        for (std::size_t used = 1; used > 0 && !input.empty() && reader.state() != State::Done && reader.state() != State::Failed;) {
            used = reader.put(input);
            require(used <= input.size());
            input.erase(0, used);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    constexpr std::size_t limit = 4096;
    const std::string_view bytes(reinterpret_cast<const char *>(data), size);
    server::RequestReader whole(limit, limit);
    server::RequestReader pieces(limit, limit);
    readInPieces(whole, bytes, {});
    readInPieces(pieces, bytes.substr(0, size / 3), bytes.substr(size / 3));
    // A mistake may be seen sooner in one of them.
    const bool isDone = whole.state() == server::RequestReader::State::Done;
    require(isDone == (pieces.state() == server::RequestReader::State::Done));
    if (!isDone)
        return 0;
    const server::Request request = whole.request();
    require(request.body == pieces.request().body && request.body.size() <= limit);
    server::acceptedFormat(request.accept);
    (void)request.parameter("database");
    require(!server::TokenKey(std::string(32, 'k')).verify(request.authorization, 0));
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
