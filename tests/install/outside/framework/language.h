// The program's own header; the library has one of the same name, which neither hides nor is hidden by this one.
#pragma once

constexpr int kGreek = 9;
