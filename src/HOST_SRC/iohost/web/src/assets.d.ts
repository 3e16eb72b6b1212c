declare module "*.svg" {
  const address: string;
  export default address;
}

declare module "*.css";
