#pragma once

#include <QDateTime>
#include <QList>
#include <QStringList>

class TApplication;
class TCustomRemoteServer;
class TForm;
class TScreen;

// The contract between the host and its plug-in libraries: everything that both sides must write alike.

#if defined(_WIN32)
#define KELVARA_EXPORT extern "C" __declspec(dllexport)
#define KELVARA_CALL __stdcall
#else
#define KELVARA_EXPORT extern "C" __attribute__((visibility("default")))
#define KELVARA_CALL
#endif

namespace platform {

/// `exec` of Kelvara1. The application and the screen object, then an open array of connections (its first element and highest
/// index), then the screen's name with three characters of rights, in UTF-8.
using ExecFunction
    = void(KELVARA_CALL *)(TApplication *application, TScreen *screen, QObject *const *connections, int highest, const char *formName);

/// `ShowQuestQuery` of Guest. The list of waybills stays the caller's; the rest is as in ExecFunction.
using QuestQueryFunction = void(KELVARA_CALL *)(
    QStringList *bills, TApplication *application, TScreen *screen, TCustomRemoteServer *const *connections, int highest);

/// The elements of an open array; none when it has no first element.
template <class Element>
QList<Element *> openArray(Element *const *first, int highest)
{
    return first && highest >= 0 ? QList<Element *>(first, first + highest + 1) : QList<Element *>();
}

/// Messages that a screen sends to the host's main window, with the address of its TForm as the first parameter.
enum HostMessage : int { hostFormActivated = 1124, hostFormClosed = 1125, hostFormCreating = 1127 };
/// Sends one, synchronously. There must be a main window.
void notifyHost(TForm *form, HostMessage message);

} // namespace platform

/// What the main window publishes by name.
namespace published_by_host {
inline constexpr char dataSets[] = "GlobalCdsAddr"; ///< property: address of a TList
inline constexpr char values[] = "GlobalValueAddr"; ///< property: address of a TList
inline constexpr char serverTime[] = "ServerDateTime"; ///< property: days, see daysOf()
inline constexpr char resetSearch[] = "ResetSearch"; ///< method: takes the grid that is current now, or null
} // namespace published_by_host

/// What a screen publishes by name.
namespace published_by_screen {
inline constexpr char queryButton[] = "QueryButton"; ///< property: a QAbstractButton, or null
inline constexpr const char *rights[] = { "Right1", "Right2", "Right3" }; ///< properties: bool
inline constexpr char panelButton[] = "PanelButton"; ///< property: the QAbstractButton that collapses and expands the conditions
/// Property of the dataset of a detail: the summary row that its rows belong to, in words; nothing for other datasets.
inline constexpr char summaryRow[] = "SummaryRow";
} // namespace published_by_screen

namespace platform {

/// A date-time, whatever its time zone, as days since 1899-12-30 with the time of day as fraction; exact to the millisecond.
double daysOf(const QDateTime &time);
/// The other way, in UTC.
QDateTime dateTimeOfDays(double days);

} // namespace platform
