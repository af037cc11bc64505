#pragma once

#include "fakes/fake_file_manager.h"
#include "fakes/fake_http.h"
#include "fakes/fake_main_loop.h"
#include "fakes/fake_path_monitor.h"
#include "fakes/fake_preferences.h"
#include "fakes/fake_property_lists.h"
#include "fakes/fake_services.h"
#include "fakes/fake_web_view.h"
#include "platform/ports.h"

#include <gtest/gtest.h>

namespace lumora {

/// The fixture of every core test: all ports are fakes, and every shared instance is new.
class CoreTest : public ::testing::Test {
  protected:
    CoreTest();
    ~CoreTest() override;

    /// Removes the logged and printed lines so far from view.
    void forgetLines() { streams.clear(); }

    fakes::FakeAlerts alerts;
    fakes::FakeAppleScripts appleScripts;
    fakes::FakeApplication application;
    fakes::FakeBundles bundles;
    fakes::FakeDistributedNotifications distributed;
    fakes::FakeFileManager files;
    fakes::FakeHttpSessions http;
    fakes::FakeMainLoop loop;
    fakes::FakePathMonitors paths;
    fakes::FakePreferences preferences;
    fakes::FakeProcessInfo process;
    fakes::FakePropertyLists propertyLists;
    fakes::FakeStandardStreams streams;
    fakes::FakeSystemVersions systemVersions;
    fakes::FakeTaskRunner tasks;
    fakes::FakeWebViewHost webViewHost;
    fakes::FakeWorkspace workspace;
};

} // namespace lumora
