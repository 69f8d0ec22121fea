// KdBind Fast Infoset (ITU-T X.891): vocabulary and context, reader,
// writer and encoded values.
#ifndef KDBIND_FASTINFOSET_H
#define KDBIND_FASTINFOSET_H

#include "kdbind/xmlinput.h"
#include "kdbind/xmloutput.h"

#endif
