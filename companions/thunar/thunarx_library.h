// libthunarx, whose headers don't say that they are in C (4.18).
#pragma once

#include <gtk/gtk.h>

extern "C" {
#include <thunarx/thunarx.h>
}
