SELECT category.category_name, country.country_name, sum(sales.amount) AS amount
FROM sales
JOIN product ON sales.product_key = product.product_key
JOIN subcategory ON product.subcategory_key = subcategory.subcategory_key
JOIN category ON subcategory.category_key = category.category_key
JOIN store ON sales.store_key = store.store_key
JOIN city ON store.city_key = city.city_key
JOIN region ON city.region_key = region.region_key
JOIN country ON region.country_key = country.country_key
GROUP BY category.category_name, country.country_name
ORDER BY category.category_name, country.country_name;
