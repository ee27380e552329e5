#pragma once

#include "platform/grid/combo_box.h"
#include "platform/grid/date_time_edit.h"
#include "platform/grid/lookup_combobox.h"
#include "platform/grid/number_edit.h"
