#include "platform/toolkit/application.h"
#include "platform/toolkit/library_loader.h"

using namespace platform;

namespace {
const LibraryRegistration registration({
    [] { Application->record(QStringLiteral("start-up"), {}); },
    [] { Application->record(QStringLiteral("detach"), {}); },
});
}

extern "C" int answer() { return 42; }
