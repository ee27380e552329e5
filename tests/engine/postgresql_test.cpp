#include "postgresql_server.h"
#include "support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
