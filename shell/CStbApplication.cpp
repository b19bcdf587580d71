// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "shell/CStbApplication.h"

CStbApplication::CStbApplication(QWidget *parent)
    : QWidget(parent)
{
}

int CStbApplication::type()
{
    return 1;
}
