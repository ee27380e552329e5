#pragma once

#include "platform/report/layout/page.h"

#include <QHash>

#include <bitset>

class QFileDevice;

namespace report {

/// Makes the texts of a PDF file readable for search and copy. Fonts draw several characters with one glyph (月 and the radical ⽉),
/// and the PDF writer names each glyph by the first of them, so that nobody would find 月. Knowing what was drawn, this puts the
/// drawn character there.
class PdfText {
public:
    /// To be called with every page that is drawn.
    void take(const Page &page);
    /// Changes the tables of characters in the written file, in place. A file that the disk did not take stays as it is: closing it
    /// tells. Throws Exception for one that is too large for the memory's addresses.
    void repair(QFileDevice &file, const Resources &resources) const;

private:
    using Meanings = QHash<char16_t, char16_t>; ///< what is named -> what was drawn
    Meanings meanings(const Resources &resources) const;
    static void repairTable(char *begin, char *end, const Meanings &meanings);

    std::bitset<0x10000> m_drawn;
};

} // namespace report
