#pragma once

#include "platform/report/layout/page.h"

#include <QDataStream>

namespace report {

/// The form in which pages are kept and saved. docs/report-files.md describes it.
QByteArray packedPage(const Page &page);
/// Throws Exception when the bytes are no page over these resources.
Page unpackedPage(const QByteArray &bytes, const Resources &resources);

void writeResources(QDataStream &stream, const Resources &resources);
/// Throws Exception when the stream holds something else.
Resources readResources(QDataStream &stream);

} // namespace report
