#include "core/client_data.h"

CQXClientData::CQXClientData() = default;

CQXClientData::~CQXClientData() = default;
