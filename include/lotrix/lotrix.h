// Everything of Lotrix in one header.
#ifndef LOTRIX_LOTRIX_H
#define LOTRIX_LOTRIX_H

#include "lotrix/collection.h"
#include "lotrix/component.h"
#include "lotrix/connection.h"
#include "lotrix/constants.h"
#include "lotrix/error.h"
#include "lotrix/host.h"
#include "lotrix/members.h"
#include "lotrix/recordset.h"
#include "lotrix/result_set.h"
#include "lotrix/schema.h"
#include "lotrix/text.h"
#include "lotrix/value.h"
#include "lotrix/version.h"

#endif
