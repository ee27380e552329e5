#pragma once

#include "platform/toolkit/application.h"

#include <QObject>

#include <functional>
#include <type_traits>

namespace platform {

/// Calls `work`; an exception goes to the application object instead of into the toolkit.
template <class Work>
void guarded(Work &&work)
{
    try {
        std::forward<Work>(work)();
    } catch (...) {
        Application->handleException(std::current_exception());
    }
}

/// Calls a member of `receiver`, or any callable, with the arguments of a signal, or without those that it does not take.
template <class Receiver, class Handler, class... Arguments>
void callHandler(Receiver *receiver, const Handler &handler, Arguments &&...arguments)
{
    if constexpr (std::is_member_function_pointer_v<Handler>) {
        if constexpr (std::is_invocable_v<Handler, Receiver *, Arguments...>)
            std::invoke(handler, receiver, arguments...);
        else
            std::invoke(handler, receiver);
    } else if constexpr (std::is_invocable_v<Handler, Arguments...>) {
        handler(arguments...);
    } else {
        handler();
    }
}

/// Connects a signal to a handler (a member of `receiver`, or any callable) in such a way that no exception crosses the
/// toolkit. Every handler of the platform, the plug-ins and the client is connected through this.
template <class Sender, class Signal, class Receiver, class Handler>
QMetaObject::Connection handle(Sender *sender, Signal signal, Receiver *receiver, Handler handler)
{
    return QObject::connect(sender, signal, receiver,
        [receiver, handler](auto &&...arguments) { guarded([&] { callHandler(receiver, handler, arguments...); }); });
}

} // namespace platform
