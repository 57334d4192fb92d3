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
#include "kticore/files/File.h"
#include "kticore/files/FileLocks.h"
#include "kticore/files/FileUtilities.h"
#include "kticore/files/UrlFiles.h"
#include "kticore/objects/Persist.h"
#include "kticore/objects/Registry.h"
#include "kticore/params/IniFileParam.h"
#include "kticore/params/Param.h"
#include "kticore/params/ParamTools.h"
#include "kticore/streams/Stream.h"
#if defined(_WIN32)
#    include "kticore/params/StorageParam.h"
#    include "kticore/storage/CompoundStorage.h"
#    include "kticore/storage/Storage.h"
#endif
#if defined(_WIN32)
#    include "kticore/params/RegistryParam.h"
#endif
#include "kticore/translation/DialogTemplates.h"
#include "kticore/translation/Interception.h"
#include "kticore/translation/Translation.h"
#include "kticore/values/Variant.h"
