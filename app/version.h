// What the tool says about itself.
#pragma once

#define TARNWICK_VERSION_NUMBER "0.0.1.0"
#define TARNWICK_VERSION_LINE TARNWICK_VERSION_NUMBER " 2008-07-14 Copyright (c) 2008 korvel"
