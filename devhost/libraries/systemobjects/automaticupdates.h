#pragma once

#include "libraries/systemobjects/comobject.h"

namespace devhost::systemobjects {

/// The automatic updates: nothing happens, but when updates were last installed is told.
class AutomaticUpdates : public DispatchObject<vx::com::IAutomaticUpdates2, IAutomaticUpdates> {
public:
    STDMETHODIMP DetectNow() override { return S_OK; }
    STDMETHODIMP Pause() override { return S_OK; }
    STDMETHODIMP Resume() override { return S_OK; }
    STDMETHODIMP ShowSettingsDialog() override { return E_NOTIMPL; }
    STDMETHODIMP get_Settings(IAutomaticUpdatesSettings**) override { return E_NOTIMPL; }
    STDMETHODIMP get_ServiceEnabled(VARIANT_BOOL* enabled) override;
    STDMETHODIMP EnableService() override { return S_OK; }
    STDMETHODIMP get_Results(vx::com::IAutomaticUpdatesResults** results) override;
};

} // namespace devhost::systemobjects
