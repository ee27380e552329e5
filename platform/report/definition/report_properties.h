#pragma once

#include "platform/report/definition/value_reader.h"

namespace report {

/// The value of one property, and where it begins.
struct Property {
    ValueReader &value;
    FilePosition place;
};

/// Set what the key names; false when there is no such key. Throw ValueError.
bool setProperty(Definition &report, QStringView key, const Property &property);
bool setProperty(Band &band, QStringView key, const Property &property);
bool setProperty(Object &object, QStringView key, const Property &property);

} // namespace report
