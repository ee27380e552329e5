#pragma once

#include "platform/editors/combo_box.h"
#include "platform/editors/date_time_edit.h"
#include "platform/editors/lookup_combobox.h"
#include "platform/editors/number_edit.h"
