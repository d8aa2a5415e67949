#pragma once

#include "app/ContentView.h"

namespace vellmora {

class ContentView::WorkScope {
public:
    explicit WorkScope(ContentView& content) : m_content(content) { Q_EMIT m_content.willWork(); }
    ~WorkScope() { Q_EMIT m_content.didWork(); }
    WorkScope(const WorkScope&) = delete;
    WorkScope& operator=(const WorkScope&) = delete;

private:
    ContentView& m_content;
};

}  // namespace vellmora
