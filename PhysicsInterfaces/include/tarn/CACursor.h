#pragma once

#include <tarn/ObjDependDef.h>  // defines CACursor beside the list that it walks
