#include "connection/frmConnectionWizard.h"

#include "core/settings/Settings.h"
#include "core/settings/frmOptions.h"

namespace mailvane {

frmConnectionWizard::frmConnectionWizard(Workbench& wb)
    : WorkbenchForm(wb, "frmConnectionWizard", "Connection wizard") {
    chkProxy.onClick = [this] { ApplyProxyChoice(); };
    ApplyProxyChoice();
}

void frmConnectionWizard::OnLoad() {
    const ProxySettings proxy = ReadProxySettings(wb_);
    optModem.SetValue(proxy.modem);
    optDirect.SetValue(!proxy.modem);
    chkProxy.SetChecked(proxy.useProxy);
    txtProxy.SetText(proxy.server);
    txtPort.SetText(proxy.port);
}

void frmConnectionWizard::ApplyProxyChoice() {
    txtProxy.SetEnabled(chkProxy.Checked());
    txtPort.SetEnabled(chkProxy.Checked());
}

/// The wizard is offered at the first start only, whatever became of it.
void frmConnectionWizard::NoteOffered() {
    SaveUserSetting(wb_, "Proxy", "Status", "yes");
}

void frmConnectionWizard::Finish() {
    NoteOffered();
    const ProxySettings proxy{optModem.IsSet(), chkProxy.Checked(), txtProxy.Text(),
                              txtPort.Text()};
    SaveProxySettings(wb_, proxy);
    wb_.forms.Get<frmOptions>().ShowProxy(proxy);
    Unload();
}

void frmConnectionWizard::Cancel() {
    NoteOffered();
    Unload();
}

}  // namespace mailvane
