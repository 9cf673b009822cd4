#pragma once

#include <tarn/ObjDependDef.h>  // defines PACursor beside the list that it walks
