#pragma once

#include <array>

namespace monitorservice {

/// What the documents of a project are.
enum class DocumentKind
{
    Cell,
    SubCategory,
    Group,
    PointLocation,
    DataManage,
    History,
    Alarm,
    AlarmDetail,
    AlarmDepth,
    Change
};

constexpr std::array<DocumentKind, 10> allDocumentKinds{
    DocumentKind::Cell,       DocumentKind::SubCategory, DocumentKind::Group, DocumentKind::PointLocation,
    DocumentKind::DataManage, DocumentKind::History,     DocumentKind::Alarm, DocumentKind::AlarmDetail,
    DocumentKind::AlarmDepth, DocumentKind::Change};

} // namespace monitorservice
