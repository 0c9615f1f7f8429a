/** @file
 *  MvSup2u: the whole exported interface; includes every family header.
 */
#ifndef MVSUP2U_H
#define MVSUP2U_H

#include "MvSupFrame.h"
#include "MvSupSettings.h"
#include "MvSupStorage.h"
#include "MvSupLocale.h"
#include "MvSupTypes.h"
#include "MvSupCatalogue.h"
#include "MvSupCodec.h"
#include "MvSupItemInfo.h"
#include "MvSupProperties.h"
#include "MvSupTime.h"
#include "MvSupFiles.h"
#include "MvSupContent.h"
#include "MvSupDispatch.h"
#include "MvSupStreams.h"
#include "MvSupRichText.h"
#include "MvSupShell.h"

#endif /* MVSUP2U_H */
