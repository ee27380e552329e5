#pragma once

#include "demo/random.h"

#include <string>
#include <string_view>

/// Made-up people, companies and addresses.
namespace demo {

std::string personName(Random &random);
std::string companyName(Random &random, std::string_view town);
/// The middle is starred out, as on printed waybills, so that nobody's number appears.
std::string phoneNumber(Random &random);
std::string streetAddress(Random &random, std::string_view town);

} // namespace demo
