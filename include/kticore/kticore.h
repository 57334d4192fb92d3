// Everything a host module needs from kticore, in one include.
#pragma once

#include "kticore/core/Aggregation.h"
#include "kticore/core/Enum.h"
#include "kticore/core/Exception.h"
#include "kticore/core/Heap.h"
#include "kticore/core/List.h"
#include "kticore/core/ListEnum.h"
#include "kticore/core/Map.h"
#include "kticore/core/MapEnum.h"
#include "kticore/core/Progress.h"
#include "kticore/core/Unknown.h"
#include "kticore/strings/XString.h"
#include "kticore/strings/XStringW.h"
#include "kticore/objects/Persist.h"
#include "kticore/objects/Registry.h"
#include "kticore/streams/Stream.h"
#include "kticore/values/Variant.h"
