// Numbers of the page "Mesh model". Read by the resource compiler: plain #defines only.
#pragma once

#include "gallery/resource_ids.h"

#define IDC_MESH_FIRST (IDC_PAGE_FIRST + 600)
#define IDC_MESH_VIEW (IDC_MESH_FIRST + 0)
#define IDC_MESH_HINT (IDC_MESH_FIRST + 1)
#define IDC_MESH_FIGURES (IDC_MESH_FIRST + 2)

#define IDS_MESH_FIRST (IDS_PAGE_FIRST + 600)
#define IDS_MESH_HINT (IDS_MESH_FIRST + 0)
#define IDS_MESH_FIGURES (IDS_MESH_FIRST + 1)
