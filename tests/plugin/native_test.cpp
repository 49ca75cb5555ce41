/* The native models become channel monitors. */
#include "recording_host.h"
#include <gtest/gtest.h>

TEST(native, interface_configuration)
{
    recording::host host({"0/1-CHMON-PRE"});
    dtf_datatree *in = host.plant(
        "interface-configurations{interface-configuration{active=act interface-name=Ots0/1/0/1}}",
        CHMON_NS_VANTRA_TALIN_IFMGR_CFG);
    EXPECT_EQ(ymap_xo_oc_opt_ch_mon_vantratalinifmgrcfg_lvla_interfaceconfigurations(&host.context, in, &host.out), 0u);
    EXPECT_EQ(host.imbalance(), "");
    EXPECT_EQ(host.added(), "/channel-monitors/channel-monitor/name=0/1-CHMON-PRE\n"
                            "/channel-monitors/channel-monitor/config/name=0/1-CHMON-PRE\n"
                            "/channel-monitors/channel-monitor/config/monitor-port=0/1-OtsCtrl-0/1\n");
}
