// What the tool says about itself.
#pragma once

#include "framework/version.h"

#define TARNWICK_VERSION_LINE KV_VERSION_TEXT " " KV_VERSION_DATE " Copyright (c) 2008 korvel"
