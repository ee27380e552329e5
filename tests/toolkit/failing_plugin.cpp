#include "platform/toolkit/application.h"
#include "platform/toolkit/exception.h"
#include "platform/toolkit/library_loader.h"

using namespace platform;

namespace {

/// Thrown by code that is unloaded before the loader's caller sees the failure.
class OwnException : public Exception {
public:
    using Exception::Exception;
};

const LibraryRegistration registration({
    [] { throw OwnException(QStringLiteral("全局数据集\"area\"不存在！")); },
    [] { Application->record(QStringLiteral("detach"), {}); },
});

} // namespace
