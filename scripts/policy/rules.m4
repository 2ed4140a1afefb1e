# A client, as a device adds it.
hal_client_domain(factory_app, hal_zvttvfactory)

# Who serves a HAL is known as such;
neverallow { hal_zvttvfactory_server -halserverdomain } self:process fork;
# what the platform forbids to the servers of HALs: the network and its configuration,
neverallow halserverdomain domain:{ tcp_socket udp_socket rawip_socket packet_socket } *;
neverallow halserverdomain domain:{ netlink_route_socket netlink_generic_socket } *;
neverallow halserverdomain self:capability { net_admin net_raw };
# programs in their own domain,
neverallow halserverdomain { file_type fs_type }:file execute_no_trans;
# and another process's memory;
neverallow halserverdomain domain:process ptrace;
# to all domains of the vendor image: the framework's binder and data;
neverallow { domain -coredomain } binder_device:chr_file *;
neverallow { domain -coredomain } core_data_file_type:{ file dir } *;
# to everybody: nodes and files of no type of their own, modules, and code that was written at run time.
neverallow { domain -init -kernel } device:{ chr_file blk_file } *;
neverallow { domain -init -kernel } sysfs:file { write append };
neverallow { domain -init -kernel } self:capability sys_module;
neverallow { domain -init -kernel } self:process execmem;
neverallow domain { file_type -exec_type }:file entrypoint;

role r;
role r types domain;
user u roles { r } level s0 range s0 - s0:c0;
sid kernel u:r:kernel:s0
