// What most tests read, compiled once; see engine.h.
#pragma once

#include "screens.h"

#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
