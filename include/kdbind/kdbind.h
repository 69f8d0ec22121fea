// KdBind: the XML data-binding run-time library. Includes every public header.
#ifndef KDBIND_KDBIND_H
#define KDBIND_KDBIND_H

#include "kdbind/runtime.h"
#include "kdbind/values.h"
#include "kdbind/xmloutput.h"
#include "kdbind/xmlinput.h"
#include "kdbind/fastinfoset.h"
#include "kdbind/binding.h"
#include "kdbind/metadata.h"

#endif
